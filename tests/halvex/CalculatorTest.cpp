#include "apps/halvex/Calculator.h"

#include <gtest/gtest.h>

#include <string>
#include <utility>
#include <vector>

using Fault = Calculator::Fault;
using Key = Calculator::Key;

namespace {

void press(Calculator& calculator, std::string_view keys) {
    for (const char key : keys)
        if (key != ' ')
            calculator.press(static_cast<Key>(key));
}

TEST(Calculator, ShowsWhatADeskCalculatorShows) {
    struct Case {
        const char *keys, *shown;
    };
    const Case cases[] = {
        // Typing.
        {"", "0"},
        {"007", "7"},
        {".5", "0.5"},
        {"1.2.3", "1.23"},
        {"12345678901234567", "1234567890123456"},
        {"0.00", "0.00"},
        {"1<<", "0"},
        {"5n3", "-53"},
        {"5nn", "5"},
        {"0n5", "-5"},
        // Decimal arithmetic.
        {"0.1+0.2=", "0.3"},
        {"4.35*100=", "435"},
        {"2/3=", "0.6666666666666667"},
        {"1/3*3=", "1"},
        {"1/3*3-1=", "0"},
        {"9999999999999999+0.5=", "1e+16"},
        {"9999999999999999*9999999999999999=", "9.999999999999998e+31"},
        {"1/10000000=", "0.0000001"},
        {"1/100000000=", "1e-8"},
        {"0-1/4=", "-0.25"},
        // From left to right, and the later of two operators.
        {"2+3*4=", "20"},
        {"2+3*", "5"},
        {"7+-2=", "5"},
        {"7*+n=", "0"},
        {"5*=", "25"},
        {"9-4n=", "13"},
        // Equals again.
        {"2+3==", "8"},
        {"2+3=10=", "13"},
        {"2*3===", "54"},
        {"2+3=7", "7"},
        // Percent.
        {"200+10%=", "220"},
        {"200*10%=", "20"},
        {"200/10%=", "2000"},
        {"200+%=", "600"},
        {"50%", "0.5"},
        {"200+10%+1=", "221"},
        // Clear: the number, then the rest.
        {"5+3c", "0"},
        {"5+3c4=", "9"},
        {"5+3cc=", "0"},
        {"5+3=c", "0"},
        // Memory.
        {"5A cc R", "5"},
        {"5A 3S c R", "2"},
        {"5A 1 R", "5"},
        {"5A 12", "12"},
        {"5A 2*R=", "10"},
        {"5A C 7 R", "7"},
    };
    for (const Case& c : cases) {
        Calculator calculator;
        press(calculator, c.keys);
        EXPECT_EQ(calculator.shown(), c.shown) << c.keys;
        EXPECT_EQ(calculator.fault(), Fault::None) << c.keys;
    }
}

TEST(Calculator, SaysWhatCannotBeAndGoesOnWithANewNumber) {
    struct Case {
        const char* keys;
        Fault fault;
        const char* shown;
    };
    const Case cases[] = {
        {"1/0=", Fault::DivisionByZero, "0"}, {"1/0+", Fault::DivisionByZero, "0"},
        {"1/0=+3=", Fault::None, "3"}, // the operator is not heard, the number is
        {"1/0=A R", Fault::None, "0"},        {"1/0=c", Fault::None, "0"},
        {"7A 1/0=S c R", Fault::None, "7"},   {"1/0=5=", Fault::None, "5"},
    };
    for (const Case& c : cases) {
        Calculator calculator;
        press(calculator, c.keys);
        EXPECT_EQ(calculator.fault(), c.fault) << c.keys;
        EXPECT_EQ(calculator.shown(), c.shown) << c.keys;
    }
}

TEST(Calculator, HoldsNumbersOfAThousandDigitsAndNoMore) {
    Calculator calculator;
    ASSERT_TRUE(calculator.enter("9e999"));
    press(calculator, "+=");
    EXPECT_EQ(calculator.fault(), Fault::TooLarge);
    EXPECT_FALSE(calculator.pending());

    ASSERT_TRUE(calculator.enter("1e-999"));
    press(calculator, "/10=");
    EXPECT_EQ(calculator.fault(), Fault::None);
    EXPECT_EQ(calculator.shown(), "0");

    ASSERT_TRUE(calculator.enter("-9e999"));
    press(calculator, "ASc");
    EXPECT_EQ(calculator.fault(), Fault::None);
    press(calculator, "R");
    EXPECT_EQ(calculator.shown(), "0");
    press(calculator, "2*");
    ASSERT_TRUE(calculator.enter("9e999"));
    press(calculator, "AA");
    EXPECT_EQ(calculator.fault(), Fault::TooLarge);
    press(calculator, "R");
    EXPECT_EQ(calculator.shown(), "9e+999") << "the memory stays as it was";
}

TEST(Calculator, TakesOverNumbersAndNothingElse) {
    const std::pair<const char*, const char*> taken[] = {
        {"-0.50", "-0.5"}, {".5", "0.5"},    {"5.", "5"},
        {"1E-3", "0.001"}, {"1e+3", "1000"}, {"12345678901234567890", "1.234567890123457e+19"},
        {"1e-2000", "0"},
    };
    Calculator calculator;
    press(calculator, "4*");
    for (const auto& [text, shown] : taken) {
        EXPECT_TRUE(calculator.enter(text)) << text;
        EXPECT_EQ(calculator.shown(), shown);
        EXPECT_TRUE(calculator.pending()) << text;
    }
    for (const std::string& text :
         std::vector<std::string>{"", "-", ".", "1e", "1e5.5", "1.2.3", "0x10", "nan", "1 2",
                                  "1e1000", "1e99999999999", std::string(5000, '9')})
        EXPECT_FALSE(calculator.enter(text)) << text;
    EXPECT_EQ(calculator.shown(), "0");
}

TEST(Calculator, TellsWhatItsKeysWouldDo) {
    Calculator calculator;
    press(calculator, "12");
    EXPECT_TRUE(calculator.clearsEntry());
    EXPECT_FALSE(calculator.pending());
    press(calculator, "/");
    EXPECT_FALSE(calculator.clearsEntry());
    ASSERT_TRUE(calculator.pending());
    EXPECT_EQ(calculator.pending()->left, "12");
    EXPECT_EQ(calculator.pending()->operation, Key::Divide);
    EXPECT_FALSE(calculator.hasMemory());
    press(calculator, "A");
    EXPECT_TRUE(calculator.hasMemory());
    press(calculator, "C");
    EXPECT_FALSE(calculator.hasMemory());
}

} // namespace
