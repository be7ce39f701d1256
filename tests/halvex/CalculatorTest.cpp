#include "apps/halvex/Calculator.h"

#include <gtest/gtest.h>

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
        {"12<", "1"},
        {"1<<", "0"},
        {"5n<", "0"},
        {"5n3", "-53"},
        {"5nn", "5"},
        {"n", "0"},
        {"0n5", "-5"},
        // Decimal arithmetic.
        {"0.1+0.2=", "0.3"},
        {"1.1*1.1=", "1.21"},
        {"0.3-0.1-0.2=", "0"},
        {"4.35*100=", "435"},
        {"1/3=", "0.3333333333333333"},
        {"2/3=", "0.6666666666666667"},
        {"1/3*3=", "1"},
        {"1/3*3-1=", "0"},
        {"9999999999999999+1=", "1e+16"},
        {"9999999999999999+0.5=", "1e+16"},
        {"9999999999999999*9999999999999999=", "9.999999999999998e+31"},
        {"1/8=", "0.125"},
        {"1/10000000=", "0.0000001"},
        {"1/100000000=", "1e-8"},
        {"0-1/4=", "-0.25"},
        // From left to right, and the later of two operators.
        {"2+3*4=", "20"},
        {"2+3*", "5"},
        {"7+-2=", "5"},
        {"7*+n=", "0"},
        {"5*=", "25"},
        {"5+=", "10"},
        {"9-4n=", "13"},
        // Equals again.
        {"2+3==", "8"},
        {"2+3=10=", "13"},
        {"2*3===", "54"},
        {"2+3=*4=", "20"},
        {"=", "0"},
        {"2+3=7", "7"},
        // Percent.
        {"200+10%", "20"},
        {"200+10%=", "220"},
        {"200-10%=", "180"},
        {"200*10%=", "20"},
        {"200/10%=", "2000"},
        {"200+%=", "600"},
        {"50%", "0.5"},
        {"200+10%+1=", "221"},
        // Clear: the number, then the rest.
        {"5+3c", "0"},
        {"5+3c4=", "9"},
        {"5*3c+4=", "9"},
        {"5+3cc=", "0"},
        {"5+3=c", "0"},
        // Memory.
        {"5A cc R", "5"},
        {"5A 3S c R", "2"},
        {"5A 1 R", "5"},
        {"5A 12", "12"},
        {"5A 2*R=", "10"},
        {"2*5A=", "10"},
        {"5A C 7 R", "7"},
        {"R", "0"},
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
        {"1/0=", Fault::DivisionByZero, "0"},
        {"0/0=", Fault::DivisionByZero, "0"},
        {"1/0+", Fault::DivisionByZero, "0"},
        {"1/0=+3=", Fault::None, "3"}, // the operator is not heard, the number is
        {"1/0=A R", Fault::None, "0"},
        {"1/0=5", Fault::None, "5"},
        {"1/0=c", Fault::None, "0"},
        {"7A 1/0=R", Fault::None, "7"},
        {"7A 1/0=S c R", Fault::None, "7"},
        {"1/0=5=", Fault::None, "5"},
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
    struct Case {
        const char *text, *shown; // null: refused
    };
    const Case cases[] = {
        {"12", "12"},
        {"-0.50", "-0.5"},
        {".5", "0.5"},
        {"5.", "5"},
        {"1e3", "1000"},
        {"1E-3", "0.001"},
        {"1e+3", "1000"},
        {"12345678901234567890", "1.234567890123457e+19"},
        {"1e-2000", "0"},
        {"", nullptr},
        {"-", nullptr},
        {".", nullptr},
        {"1e", nullptr},
        {"1e5.5", nullptr},
        {"1.2.3", nullptr},
        {"0x10", nullptr},
        {"nan", nullptr},
        {"inf", nullptr},
        {"1 2", nullptr},
        {"1e1000", nullptr},
        {"1e99999999999", nullptr},
    };
    for (const Case& c : cases) {
        Calculator calculator;
        press(calculator, "4*");
        EXPECT_EQ(calculator.enter(c.text), c.shown != nullptr) << c.text;
        EXPECT_EQ(calculator.shown(), c.shown ? c.shown : "4") << c.text;
        EXPECT_TRUE(calculator.pending()) << c.text;
    }
    Calculator calculator;
    EXPECT_FALSE(calculator.enter(std::string(5000, '9')));
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
