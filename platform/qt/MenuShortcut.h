#pragma once

#include "platform/widgets/Menu.h"

#include <QString>

namespace platform::qt {

/// Returns the shortcut as the desktop writes it, such as "Ctrl+K".
QString shortcutText(const KeyShortcut& shortcut);

/// Returns whether @p event is the key of @p shortcut with exactly its modifier keys. For a
/// character other than a letter, Shift does not count, because it may be needed to enter it.
bool matches(const KeyShortcut& shortcut, const KeyEvent& event);

/// Returns the first enabled item with a shortcut that matches @p event, in the menu or its
/// submenus, or null. Calls the items' targets.
std::shared_ptr<MenuItem> itemWithShortcut(const Menu& menu, const KeyEvent& event);

} // namespace platform::qt
