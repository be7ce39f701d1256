#include "apps/halvex/Calculator.h"

#include <algorithm>

namespace apps {
namespace {

const Decimal kCancellation{"1e-45"};

char digitOf(Calculator::Key key) {
    return static_cast<char>('0' + static_cast<int>(key));
}

bool isDigitCharacter(char character) {
    return character >= '0' && character <= '9';
}

bool endsFault(Calculator::Key key) {
    using Key = Calculator::Key;
    return Calculator::isDigit(key) || key == Key::Point || key == Key::Clear ||
           key == Key::Backspace || key == Key::MemoryRecall;
}

Decimal sum(const Decimal& left, const Decimal& right) {
    const Decimal result = left + right;
    const Decimal largest = std::max(abs(left), abs(right));
    return abs(result) < largest * kCancellation ? Decimal(0) : result;
}

} // namespace

void Calculator::press(Key key) {
    if (fault_ != Fault::None && key != Key::MemoryClear) {
        if (!endsFault(key))
            return;
        clear();
    }
    if (isDigit(key))
        return typeDigit(key);
    switch (key) {
    case Key::Point:
        return typePoint();
    case Key::Backspace:
        return removeLastCharacter();
    case Key::Clear:
        return clear();
    case Key::Add:
    case Key::Subtract:
    case Key::Multiply:
    case Key::Divide:
        return pressOperator(key);
    case Key::Equals:
        return pressEquals();
    case Key::Percent:
        return pressPercent();
    case Key::Sign:
        return changeSign();
    default:
        return pressMemoryKey(key);
    }
}

bool Calculator::enter(std::string_view number) {
    const auto value = parseDecimal(number);
    if (!value)
        return false;
    if (fault_ != Fault::None)
        clear();
    showOperand(*value);
    return true;
}

std::string Calculator::display() const {
    return typed_.empty() ? formatDecimal(result_) : typed_;
}

std::optional<Calculator::Pending> Calculator::pending() const {
    if (!pending_)
        return std::nullopt;
    return Pending{formatDecimal(pending_->operand), pending_->operation};
}

void Calculator::typeDigit(Key key) {
    if (typed_ == "0" || typed_ == "-0")
        typed_.pop_back();
    if (std::ranges::count_if(typed_, isDigitCharacter) < kDisplayDigits)
        typed_ += digitOf(key);
    hasNewOperand_ = true;
}

void Calculator::typePoint() {
    if (typed_.empty())
        typed_ = "0";
    if (typed_.find('.') == std::string::npos)
        typed_ += '.';
    hasNewOperand_ = true;
}

void Calculator::removeLastCharacter() {
    if (typed_.empty())
        return;
    typed_.pop_back();
    if (typed_.empty() || typed_ == "-")
        typed_ = "0";
}

void Calculator::clear() {
    const bool onlyTyped = isTyping();
    show(0);
    hasNewOperand_ = false;
    if (onlyTyped)
        return;
    pending_.reset();
    repeatable_.reset();
    fault_ = Fault::None;
}

void Calculator::pressOperator(Key operation) {
    std::optional<Decimal> left = displayedNumber();
    if (pending_)
        left = hasNewOperand_ ? evaluate(pending_->operand, pending_->operation, *left)
                              : pending_->operand;
    if (!left)
        return;
    show(*left);
    pending_ = {operation, *left};
    hasNewOperand_ = false;
}

void Calculator::pressEquals() {
    const Decimal displayed = displayedNumber();
    const Decimal left = pending_ ? pending_->operand : displayed;
    const auto operation = pending_ ? Operation{pending_->operation, displayed} : repeatable_;
    const auto result =
        operation ? evaluate(left, operation->operation, operation->operand) : displayed;
    if (!result)
        return;
    show(*result);
    repeatable_ = operation;
    pending_.reset();
    hasNewOperand_ = false;
}

void Calculator::pressPercent() {
    const bool isShare =
        pending_ && (pending_->operation == Key::Add || pending_->operation == Key::Subtract);
    const Decimal hundredths = displayedNumber() / 100;
    if (const auto result = checkRange(isShare ? pending_->operand * hundredths : hundredths))
        showOperand(*result);
}

void Calculator::changeSign() {
    if (typed_.empty())
        return showOperand(result_ == 0 ? result_ : Decimal(-result_));
    if (typed_[0] == '-')
        typed_.erase(0, 1);
    else
        typed_.insert(0, 1, '-');
}

void Calculator::pressMemoryKey(Key key) {
    if (key == Key::MemoryClear)
        return memory_.reset();
    if (key == Key::MemoryRecall) {
        if (memory_)
            showOperand(*memory_);
        return;
    }
    const Decimal displayed = displayedNumber();
    const Decimal change = key == Key::MemoryAdd ? displayed : Decimal(-displayed);
    const auto result = checkRange(sum(memory_.value_or(0), change));
    if (!result)
        return;
    show(displayed);
    memory_ = result;
}

Decimal Calculator::displayedNumber() const {
    return typed_.empty() ? result_ : parseDecimal(typed_).value_or(0);
}

void Calculator::show(const Decimal& number) {
    typed_.clear();
    result_ = number;
}

void Calculator::showOperand(const Decimal& number) {
    show(number);
    hasNewOperand_ = true;
}

std::optional<Decimal> Calculator::evaluate(const Decimal& left, Key operation,
                                            const Decimal& right) {
    switch (operation) {
    case Key::Add:
        return checkRange(sum(left, right));
    case Key::Subtract:
        return checkRange(sum(left, -right));
    case Key::Multiply:
        return checkRange(left * right);
    default:
        break;
    }
    if (right != 0)
        return checkRange(left / right);
    fail(Fault::DivisionByZero);
    return std::nullopt;
}

std::optional<Decimal> Calculator::checkRange(const Decimal& number) {
    if (overflows(number)) {
        fail(Fault::Overflow);
        return std::nullopt;
    }
    return underflows(number) ? Decimal(0) : number;
}

void Calculator::fail(Fault fault) {
    show(0);
    pending_.reset();
    repeatable_.reset();
    hasNewOperand_ = false;
    fault_ = fault;
}

} // namespace apps
