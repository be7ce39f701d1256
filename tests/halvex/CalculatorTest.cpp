#include "apps/halvex/Calculator.h"

#include <gtest/gtest.h>

#include <sstream>
#include <string>
#include <utility>
#include <vector>

using Fault = apps::Calculator::Fault;
using Key = apps::Calculator::Key;

using namespace apps;

namespace {

void press(Calculator& calculator, std::string_view keys) {
    for (const char key : keys)
        if (key != ' ')
            calculator.press(static_cast<Key>(key));
}

/// Typing; decimal arithmetic; from left to right, and the later of two operators; equals again;
/// percent; clear, the number and then the rest; what follows on a division by zero, of which the
/// operator is not heard; memory.
TEST(Calculator, ShowsWhatADeskCalculatorShows) {
    EXPECT_EQ(Calculator().shown(), "0");
    std::istringstream keysAndShown(R"(
        007 7   .5 0.5   1.2.3 1.23   12345678901234567 1234567890123456   0.00 0.00   1<< 0
        5n3 -53   5nn 5   0n5 -5
        0.1+0.2= 0.3   4.35*100= 435   2/3= 0.6666666666666667   1/3*3= 1   1/3*3-1= 0
        9999999999999999+0.5= 1e+16   9999999999999999*9999999999999999= 9.999999999999998e+31
        1/10000000= 0.0000001   1/100000000= 1e-8   0-1/4= -0.25
        2+3*4= 20   2+3* 5   7+-2= 5   7*+n= 0   5*= 25   9-4n= 13
        2+3== 8   2+3=10= 13   2*3=== 54   2+3=7 7
        200+10%= 220   200*10%= 20   200/10%= 2000   200+%= 600   50% 0.5   200+10%+1= 221
        5+3c 0   5+3c4= 9   5+3cc= 0   5+3=c 0
        1/0=+3= 3   1/0=AR 0   1/0=c 0   7A1/0=ScR 7   1/0=5= 5
        5AccR 5   5A3ScR 2   5A1R 5   5A12 12   5A2*R= 10   5AC7R 7)");
    for (std::string keys, shown; keysAndShown >> keys >> shown;) {
        Calculator calculator;
        press(calculator, keys);
        EXPECT_EQ(calculator.shown(), shown) << keys;
        EXPECT_EQ(calculator.fault(), Fault::None) << keys;
    }
}

TEST(Calculator, SaysWhatCannotBe) {
    for (const char* keys : {"1/0=", "1/0+"}) {
        Calculator calculator;
        press(calculator, keys);
        EXPECT_EQ(calculator.fault(), Fault::DivisionByZero) << keys;
        EXPECT_EQ(calculator.shown(), "0");
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

} // namespace
