#include "apps/halvex/Calculator.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>
#include <string>
#include <vector>

using namespace apps;

using Key = Calculator::Key;

namespace {

const std::map<std::string, Key> kLabels{
    {"+", Key::Add},          {"-", Key::Subtract},        {"*", Key::Multiply},
    {"/", Key::Divide},       {"=", Key::Equals},          {"%", Key::Percent},
    {"+/-", Key::Sign},       {"Back", Key::Backspace},    {"C", Key::Clear},
    {"M+", Key::MemoryAdd},   {"M-", Key::MemorySubtract}, {"MC", Key::MemoryClear},
    {"MR", Key::MemoryRecall}};

/// Presses the keys of a text such as "1.5 + 2 =": the digits of numbers and the labels above.
void press(Calculator& calculator, const std::string& keys) {
    std::istringstream words(keys);
    for (std::string word; words >> word;) {
        if (kLabels.contains(word))
            calculator.press(kLabels.at(word));
        else
            for (const char c : word)
                calculator.press(c == '.' ? Key::Point : static_cast<Key>(c - '0'));
    }
}

std::string outcome(const Calculator& calculator) {
    if (calculator.fault() == Calculator::Fault::None)
        return calculator.display();
    return calculator.fault() == Calculator::Fault::Overflow ? "overflow" : "division by zero";
}

/// Rules with key sequences and their outcome.
const std::vector<std::pair<std::string, std::vector<std::string>>> kRules = {
    {"Digits, the point and the sign form a number of at most 16 digits",
     {"007 → 7", ".5 → 0.5", "1.2.3 → 1.23", "12345678901234567 → 1234567890123456", "0.00 → 0.00",
      "1 Back Back → 0", "5 +/- Back → 0", "2 + 3 = 7 Back → 0", "5 +/- 3 → -53", "5 +/- +/- → 5",
      "0 +/- 5 → -5"}},
    {"Arithmetic is decimal, and 16 digits are displayed",
     {"0.1 + 0.2 = → 0.3", "4.35 * 100 = → 435", "2 / 3 = → 0.6666666666666667", "1 / 3 * 3 = → 1",
      "1 / 3 * 3 - 1 = → 0", "9999999999999999 + 0.5 = → 1e+16",
      "9999999999999999 * 9999999999999999 = → 9.999999999999998e+31", "1 / 10000000 = → 0.0000001",
      "1 / 100000000 = → 1e-8", "0 - 1 / 4 = → -0.25"}},
    {"Operators are evaluated from left to right; the second of two replaces the first",
     {"2 + 3 * 4 = → 20", "2 + 3 * → 5", "7 + - 2 = → 5", "7 * + +/- = → 0", "5 * = → 25",
      "9 - 4 +/- = → 13"}},
    {"Equals repeats the last operation",
     {"2 + 3 = = → 8", "2 + 3 = 10 = → 13", "2 * 3 = = = → 54", "2 + 3 = 7 → 7"}},
    {"Percent is a share of the first operand in sums and differences, else a hundredth",
     {"200 + 10 % = → 220", "200 * 10 % = → 20", "200 / 10 % = → 2000", "200 + % = → 600",
      "50 % → 0.5", "200 + 10 % + 1 = → 221"}},
    {"Clear removes the number being typed, then everything but the memory",
     {"5 + 3 C → 0", "5 + 3 C 4 = → 9", "5 * 3 C + 4 = → 9", "5 + 3 C C 4 = → 4",
      "5 + 3 = C 4 = → 4"}},
    {"A division by zero and an overflow are faults; an underflow is 0",
     {"1 / 0 = → division by zero", "1 / 0 + → division by zero",
      "9999999999999999 * = * = * = * = * = * = → overflow",
      "1 / 9999999999999999 = * = * = * = * = * = * = → 0"}},
    {"A new number or Clear ends a fault; other keys do nothing until then",
     {"1 / 0 = + 3 = → 3", "1 / 0 = M+ MR → 0", "1 / 0 = C → 0", "7 M+ 1 / 0 = M- C MR → 7",
      "1 / 0 = 5 = → 5"}},
    {"The memory keeps a number until it is cleared",
     {"5 M+ C C MR → 5", "5 M+ 3 M- C MR → 2", "5 M+ 1 MR → 5", "5 M+ 12 → 12",
      "5 M+ * 2 MR = → 25", "5 M+ * 2 = → 10", "5 M+ MC 7 MR → 7"}},
};

TEST(Calculator, DisplaysTheResultOfEachKeySequence) {
    const std::string arrow = " → ";
    for (const auto& [rule, examples] : kRules)
        for (const std::string& example : examples) {
            const std::size_t end = example.find(arrow);
            Calculator calculator;
            press(calculator, example.substr(0, end));
            EXPECT_EQ(outcome(calculator), example.substr(end + arrow.size()))
                << rule << ": " << example;
        }
}

TEST(Calculator, KeepsTheMemoryWhenAddingToItOverflows) {
    Calculator calculator;
    press(calculator, "1 / 0 =");
    ASSERT_TRUE(calculator.enter("9e999")); // ends the fault
    press(calculator, "+ M+ M+");
    EXPECT_EQ(outcome(calculator), "overflow");
    EXPECT_FALSE(calculator.pending());
    EXPECT_EQ(calculator.display(), "0");
    press(calculator, "MR");
    EXPECT_EQ(outcome(calculator), "9e+999");
}

TEST(Calculator, EntersValidNumbersAndRejectsOtherText) {
    const std::pair<const char*, const char*> textAndDisplay[] = {
        {"-0.50", "-0.5"},    {".5", "0.5"},    {"5.", "5"},
        {"1E-3", "0.001"},    {"1e+3", "1000"}, {"12345678901234567890", "1.234567890123457e+19"},
        {"1e-999", "1e-999"}, {"1e-2000", "0"},
    };
    Calculator calculator;
    press(calculator, "4 *");
    for (const auto& [text, display] : textAndDisplay) {
        EXPECT_TRUE(calculator.enter(text)) << text;
        EXPECT_EQ(calculator.display(), display);
        EXPECT_TRUE(calculator.pending()) << text;
    }
    for (const std::string& text :
         std::vector<std::string>{"", "-", ".", "1e", "1e5.5", "1.2.3", "0x10", "nan", "1 2",
                                  "1e1000", "1e99999999999", std::string(5000, '9')})
        EXPECT_FALSE(calculator.enter(text)) << text;
    EXPECT_EQ(calculator.display(), "0");
}

} // namespace
