#pragma once

#include "apps/halvex/Decimal.h"

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// The state of a desk calculator: takes key presses and provides the text of the display.
///
/// Keys are evaluated from left to right, without precedence: 2 + 3 × 4 = 20.
/// - An operator first evaluates the pending operation. If two operators follow one another, the
///   second replaces the first.
/// - Equals without a second operand uses the displayed number: 5 × = is 25. Pressed again, or
///   after a new number, it repeats the last operation: 2 + 3 = = is 8.
/// - Percent replaces the second operand of an addition or subtraction with that percentage of the
///   first: 200 + 10 % = is 220. Otherwise it divides the displayed number by 100.
/// - Clear removes the number being typed. If no number is being typed, it resets everything except
///   the memory.
/// - After a fault, only Clear, Backspace, Memory Clear and the keys that enter a number have an
///   effect. All of them but Memory Clear first reset everything except the memory.
///
/// A sum or difference below 10^-45 times its larger operand is rounded to 0: 1 ÷ 3 × 3 - 1 is 0.
class Calculator {
  public:
    enum class Key {
        Digit0,
        Digit1,
        Digit2,
        Digit3,
        Digit4,
        Digit5,
        Digit6,
        Digit7,
        Digit8,
        Digit9,
        Point,
        Add,
        Subtract,
        Multiply,
        Divide,
        Equals,
        Percent,
        Sign,
        Clear,
        Backspace,
        MemoryClear,
        MemoryRecall,
        MemoryAdd,
        MemorySubtract,
    };
    enum class Fault { None, DivisionByZero, Overflow };
    /// An operator whose second operand has not been completed.
    struct Pending {
        std::string left;
        Key operation;
    };

    static constexpr bool isDigit(Key key) { return key <= Key::Digit9; }

    void press(Key key);
    /// Displays @p number (see parseDecimal) as a completed operand. Returns false and changes
    /// nothing if it cannot be parsed.
    bool enter(std::string_view number);

    /// Returns the number being typed, or else the last result as formatted by formatDecimal.
    /// Returns "0" while there is a fault.
    std::string display() const;
    Fault fault() const { return fault_; }
    std::optional<Pending> pending() const;
    bool hasMemory() const { return memory_.has_value(); }
    /// Whether a number is being typed. Clear then removes only that number.
    bool isTyping() const { return !typed_.empty(); }

  private:
    struct Operation {
        Key operation;
        Decimal operand;
    };

    void typeDigit(Key key);
    void typePoint();
    void removeLastCharacter();
    void clear();
    void pressOperator(Key operation);
    void pressEquals();
    void pressPercent();
    void changeSign();
    void pressMemoryKey(Key key);

    Decimal displayedNumber() const;
    void show(const Decimal& number);
    void showOperand(const Decimal& number);
    std::optional<Decimal> evaluate(const Decimal& left, Key operation, const Decimal& right);
    /// Returns @p number, or 0 if it underflows. If it overflows, sets the fault
    /// and returns std::nullopt.
    std::optional<Decimal> checkRange(const Decimal& number);
    void fail(Fault fault);

    std::string typed_;  ///< the number being typed, or empty
    Decimal result_ = 0; ///< displayed while no number is being typed
    std::optional<Operation> pending_;
    bool hasNewOperand_ = false; ///< a number was entered since the last operator or result
    std::optional<Operation> repeatable_; ///< what Equals repeats
    std::optional<Decimal> memory_;
    Fault fault_ = Fault::None;
};

} // namespace apps
