#include "platform/qt/MenuShortcut.h"

#include "platform/qt/InputEvents.h"
#include "platform/qt/Strings.h"
#include "platform/values/Event.h"

#include <QKeySequence>

#include <algorithm>
#include <vector>

namespace platform::qt {
namespace {

constexpr std::uint32_t kModifiers = kShiftKeyMask | kControlKeyMask | kOptionKeyMask;

std::shared_ptr<MenuItem> search(const Menu& menu, const KeyEvent& event,
                                 std::vector<const Menu*>& visited) {
    if (std::find(visited.begin(), visited.end(), &menu) != visited.end())
        return nullptr;
    visited.push_back(&menu);
    for (const auto& item : menu.items()) {
        if (item->isHidden())
            continue;
        if (item->shortcut() && matches(*item->shortcut(), event) && item->hasAction() &&
            item->isEnabled())
            return item;
        const auto& submenu = item->submenu();
        if (auto nested = submenu ? search(*submenu, event, visited) : nullptr)
            return nested;
    }
    return nullptr;
}

} // namespace

QString shortcutText(const KeyShortcut& shortcut) {
    QString text;
    for (const auto& [flag, modifier] :
         {std::pair(kControlKeyMask, Qt::CTRL), std::pair(kOptionKeyMask, Qt::ALT),
          std::pair(kShiftKeyMask, Qt::SHIFT)})
        if (shortcut.modifierFlags & flag)
            text += QKeySequence(static_cast<int>(modifier)).toString(QKeySequence::NativeText);
    if (shortcut.key != Key::None)
        return text + QKeySequence(qtKey(shortcut.key)).toString(QKeySequence::NativeText);
    if (shortcut.character == " ")
        return text + QKeySequence(Qt::Key_Space).toString(QKeySequence::NativeText);
    return text + qString(shortcut.character).toUpper();
}

bool matches(const KeyShortcut& shortcut, const KeyEvent& event) {
    const QString character = qString(shortcut.character);
    const QString entered = qString(event.text);
    if (shortcut.key != event.key || character.compare(entered, Qt::CaseInsensitive) != 0 ||
        (event.key == Key::None && entered.isEmpty()))
        return false;
    const bool hasCase = character.toUpper() != character.toLower();
    const bool shiftCounts = shortcut.key != Key::None || hasCase;
    const std::uint32_t counted = shiftCounts ? kModifiers : kModifiers & ~kShiftKeyMask;
    return (shortcut.modifierFlags & counted) == (event.modifierFlags & counted);
}

std::shared_ptr<MenuItem> itemWithShortcut(const Menu& menu, const KeyEvent& event) {
    std::vector<const Menu*> visited;
    return search(menu, event, visited);
}

} // namespace platform::qt
