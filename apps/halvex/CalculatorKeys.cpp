#include "apps/halvex/CalculatorKeys.h"

#include <QKeyEvent>

#include <algorithm>
#include <utility>

namespace apps {

using Key = Calculator::Key;

namespace {

struct Shortcut {
    int keyboardKey;
    Qt::KeyboardModifiers modifiers;
    Key key;
};

const Shortcut kShortcuts[] = {
    {Qt::Key_Return, Qt::NoModifier, Key::Equals},
    {Qt::Key_Enter, Qt::NoModifier, Key::Equals},
    {Qt::Key_Escape, Qt::NoModifier, Key::Clear},
    {Qt::Key_Delete, Qt::NoModifier, Key::Clear},
    {Qt::Key_Backspace, Qt::NoModifier, Key::Backspace},
    {Qt::Key_F9, Qt::NoModifier, Key::Sign},
    {Qt::Key_L, Qt::ControlModifier, Key::MemoryClear},
    {Qt::Key_R, Qt::ControlModifier, Key::MemoryRecall},
    {Qt::Key_P, Qt::ControlModifier, Key::MemoryAdd},
    {Qt::Key_P, Qt::ControlModifier | Qt::ShiftModifier, Key::MemorySubtract},
};

constexpr std::pair<char16_t, Key> kCharacters[] = {
    {u'.', Key::Point},    {u',', Key::Point},         {u'+', Key::Add},
    {u'-', Key::Subtract}, {u'\u2212', Key::Subtract}, {u'*', Key::Multiply},
    {u'x', Key::Multiply}, {u'\u00d7', Key::Multiply}, {u'/', Key::Divide},
    {u':', Key::Divide},   {u'\u00f7', Key::Divide},   {u'=', Key::Equals},
    {u'%', Key::Percent},
};

} // namespace

const std::array<CalculatorKey, 23> kCalculatorKeys{{
    {Key::MemoryClear, "MC", "Memory clear", 0, 0},
    {Key::MemoryRecall, "MR", "Memory recall", 0, 1},
    {Key::MemorySubtract, "M−", "Memory subtract", 0, 2},
    {Key::MemoryAdd, "M+", "Memory add", 0, 3},
    {Key::Clear, "AC", "Clear", 1, 0},
    {Key::Sign, "±", "Change sign", 1, 1},
    {Key::Percent, "%", "Percent", 1, 2},
    {Key::Divide, "÷", "Divide", 1, 3},
    {Key::Digit7, "7", "7", 2, 0},
    {Key::Digit8, "8", "8", 2, 1},
    {Key::Digit9, "9", "9", 2, 2},
    {Key::Multiply, "×", "Multiply", 2, 3},
    {Key::Digit4, "4", "4", 3, 0},
    {Key::Digit5, "5", "5", 3, 1},
    {Key::Digit6, "6", "6", 3, 2},
    {Key::Subtract, "−", "Subtract", 3, 3},
    {Key::Digit1, "1", "1", 4, 0},
    {Key::Digit2, "2", "2", 4, 1},
    {Key::Digit3, "3", "3", 4, 2},
    {Key::Add, "+", "Add", 4, 3},
    {Key::Digit0, "0", "0", 5, 0, 2},
    {Key::Point, ".", "Decimal point", 5, 2},
    {Key::Equals, "=", "Equals", 5, 3},
}};

std::optional<Key> calculatorKey(const QKeyEvent& event) {
    const auto modifiers = event.modifiers() & ~Qt::KeypadModifier;
    for (const Shortcut& shortcut : kShortcuts)
        if (shortcut.keyboardKey == event.key() && shortcut.modifiers == modifiers)
            return shortcut.key;
    const QString text = event.text();
    if (text.size() != 1 || (modifiers & ~Qt::ShiftModifier))
        return std::nullopt;
    const char16_t character = text[0].unicode();
    if (character >= u'0' && character <= u'9')
        return static_cast<Key>(character - u'0');
    const auto* const found =
        std::ranges::find(kCharacters, character, &std::pair<char16_t, Key>::first);
    if (found == std::end(kCharacters))
        return std::nullopt;
    return found->second;
}

} // namespace apps
