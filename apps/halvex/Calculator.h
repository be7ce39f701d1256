#pragma once

#include "apps/halvex/Decimal.h"

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// A desk calculator without its case: keys go in, the number that it shows comes out.
///
/// What is typed is calculated from left to right, without precedence: 2 + 3 × 4 = 20.
/// - An operator calculates what is pending first; of two in a row the later one counts.
/// - Equals without a second number takes the one that is shown: 5 × = is 25. Pressed again, or
///   after another number, it repeats the last operator with its second number: 2 + 3 = = is 8.
/// - Percent of a number to be added or subtracted is that many hundredths of the first one:
///   200 + 10 % = is 220. Everywhere else it divides by 100.
/// - Clear takes back the number that is being typed; when there is none, everything but the
///   memory.
/// - What is wrong (see Fault) stays until it is cleared, or a new number begins.
/// A difference that is smaller by 45 digits than what it is of is 0, so that 1 ÷ 3 × 3 - 1 is.
class Calculator {
  public:
    enum class Key : char {
        Digit0 = '0', // and so on to '9'
        Point = '.',
        Add = '+',
        Subtract = '-',
        Multiply = '*',
        Divide = '/',
        Equals = '=',
        Percent = '%',
        Sign = 'n',
        Clear = 'c',
        Backspace = '<',
        MemoryClear = 'C',
        MemoryRecall = 'R',
        MemoryAdd = 'A',
        MemorySubtract = 'S',
    };
    enum class Fault { None, DivisionByZero, TooLarge };
    /// The first number and the operator, while the second number is awaited.
    struct Pending {
        std::string left;
        Key operation;
    };

    void press(Key key);
    /// Takes a number (see decimalOf) as if it had been typed. False, and nothing is changed, when
    /// it is none.
    bool enter(std::string_view number);

    /// What is typed, else the last result as decimalText writes it; "0" with a fault.
    std::string shown() const;
    Fault fault() const { return fault_; }
    std::optional<Pending> pending() const;
    bool hasMemory() const { return memory_.has_value(); }
    /// Whether Clear takes back a number alone.
    bool clearsEntry() const { return !entry_.empty(); }

  private:
    struct Step {
        Key operation;
        Decimal number;
    };

    void typeDigit(char digit);
    void typePoint();
    void takeBack();
    void clear();
    void operate(Key operation);
    void equals();
    void percent();
    void changeSign();
    void changeMemory(Key key);

    Decimal current() const;
    void show(const Decimal& number);
    void showOperand(const Decimal& number);
    std::optional<Decimal> calculated(const Decimal& left, Key operation, const Decimal& right);
    /// The number when it can be held; else nothing, and the fault is noted.
    std::optional<Decimal> held(const Decimal& number);
    void fail(Fault fault);

    std::string entry_; ///< what is being typed; empty when nothing is
    Decimal value_ = 0; ///< what is shown when nothing is
    std::optional<Step> pending_;
    bool hasOperand_ = false; ///< whether the second number of what is pending was given
    std::optional<Step> repeated_;
    std::optional<Decimal> memory_;
    Fault fault_ = Fault::None;
};

} // namespace apps
