#include "apps/halvex/Calculator.h"

#include <algorithm>

namespace apps {
namespace {

const Decimal kCancelled{"1e-45"};

bool isDigit(char key) {
    return key >= '0' && key <= '9';
}

Decimal sum(const Decimal& left, const Decimal& right) {
    const Decimal result = left + right;
    return abs(result) < std::max(abs(left), abs(right)) * kCancelled ? Decimal(0) : result;
}

} // namespace

void Calculator::press(Key key) {
    const char sign = static_cast<char>(key);
    if (fault_ != Fault::None) {
        const bool begins = isDigit(sign) || key == Key::Point || key == Key::Clear ||
                            key == Key::Backspace || key == Key::MemoryRecall;
        if (!begins && key != Key::MemoryClear)
            return;
        if (begins)
            clear();
    }
    if (isDigit(sign))
        return typeDigit(sign);
    switch (key) {
    case Key::Point:
        return typePoint();
    case Key::Backspace:
        return takeBack();
    case Key::Clear:
        return clear();
    case Key::Add:
    case Key::Subtract:
    case Key::Multiply:
    case Key::Divide:
        return operate(key);
    case Key::Equals:
        return equals();
    case Key::Percent:
        return percent();
    case Key::Sign:
        return changeSign();
    default:
        return changeMemory(key);
    }
}

bool Calculator::enter(std::string_view number) {
    const auto value = decimalOf(number);
    if (!value)
        return false;
    if (fault_ != Fault::None)
        clear();
    showOperand(*value);
    return true;
}

std::string Calculator::shown() const {
    return entry_.empty() ? decimalText(value_) : entry_;
}

std::optional<Calculator::Pending> Calculator::pending() const {
    if (!pending_)
        return std::nullopt;
    return Pending{decimalText(pending_->number), pending_->operation};
}

void Calculator::typeDigit(char digit) {
    if (entry_ == "0" || entry_ == "-0")
        entry_.pop_back();
    if (std::ranges::count_if(entry_, isDigit) < kShownDigits)
        entry_ += digit;
    hasOperand_ = true;
}

void Calculator::typePoint() {
    if (entry_.empty())
        entry_ = "0";
    if (entry_.find('.') == std::string::npos)
        entry_ += '.';
    hasOperand_ = true;
}

void Calculator::takeBack() {
    if (entry_.empty())
        return;
    entry_.pop_back();
    if (entry_.empty() || entry_ == "-")
        entry_ = "0";
}

void Calculator::clear() {
    const bool entryAlone = clearsEntry();
    show(0);
    hasOperand_ = false;
    if (entryAlone)
        return;
    pending_.reset();
    repeated_.reset();
    fault_ = Fault::None;
}

void Calculator::operate(Key operation) {
    std::optional<Decimal> left = current();
    if (pending_)
        left = hasOperand_ ? calculated(pending_->number, pending_->operation, *left)
                           : pending_->number;
    if (!left)
        return;
    show(*left);
    pending_ = {operation, *left};
    repeated_.reset();
    hasOperand_ = false;
}

void Calculator::equals() {
    const Decimal shown = current();
    const auto step = pending_ ? Step{pending_->operation, shown} : repeated_;
    const auto result =
        step ? calculated(pending_ ? pending_->number : shown, step->operation, step->number)
             : shown;
    if (!result)
        return;
    show(*result);
    repeated_ = step;
    pending_.reset();
    hasOperand_ = false;
}

void Calculator::percent() {
    const bool isShare =
        pending_ && (pending_->operation == Key::Add || pending_->operation == Key::Subtract);
    const Decimal hundredths = current() / 100;
    if (const auto result = held(isShare ? pending_->number * hundredths : hundredths))
        showOperand(*result);
}

void Calculator::changeSign() {
    if (entry_.empty())
        return showOperand(value_ == 0 ? value_ : Decimal(-value_));
    if (entry_[0] == '-')
        entry_.erase(0, 1);
    else
        entry_.insert(0, 1, '-');
}

void Calculator::changeMemory(Key key) {
    if (key == Key::MemoryClear)
        return memory_.reset();
    if (key == Key::MemoryRecall) {
        if (memory_)
            showOperand(*memory_);
        return;
    }
    const Decimal change = key == Key::MemoryAdd ? current() : Decimal(-current());
    const auto result = held(sum(memory_.value_or(0), change));
    if (!result)
        return;
    show(current());
    memory_ = result;
}

Decimal Calculator::current() const {
    return entry_.empty() ? value_ : decimalOf(entry_).value_or(0);
}

void Calculator::show(const Decimal& number) {
    entry_.clear();
    value_ = number;
}

void Calculator::showOperand(const Decimal& number) {
    show(number);
    hasOperand_ = true;
}

std::optional<Decimal> Calculator::calculated(const Decimal& left, Key operation,
                                              const Decimal& right) {
    switch (operation) {
    case Key::Add:
        return held(sum(left, right));
    case Key::Subtract:
        return held(sum(left, -right));
    case Key::Multiply:
        return held(left * right);
    default:
        break;
    }
    if (right != 0)
        return held(left / right);
    fail(Fault::DivisionByZero);
    return std::nullopt;
}

std::optional<Decimal> Calculator::held(const Decimal& number) {
    if (isTooLarge(number)) {
        fail(Fault::TooLarge);
        return std::nullopt;
    }
    return isTooSmall(number) ? Decimal(0) : number;
}

void Calculator::fail(Fault fault) {
    show(0);
    pending_.reset();
    repeated_.reset();
    hasOperand_ = false;
    fault_ = fault;
}

} // namespace apps
