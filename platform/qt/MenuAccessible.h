#pragma once

#include "platform/widgets/Menu.h"

#include <QString>

namespace platform::qt {

/// Returns what screen readers speak for an item: its title, trailing text and subtitle.
QString accessibleText(const MenuItem& item);

/// Presents each QtMenu to screen readers as a menu, and its rows as menu items with the texts and
/// states of the items, or with the texts of their views. Has an effect only the first time. Main
/// thread.
void installMenuAccessibility();

} // namespace platform::qt
