#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

namespace platform {

class MenuExtra;
class MenuExtraView;

/// The menu bar as seen by the items that it hosts. Main thread only.
class MenuExtraHost : NonCopyable {
  public:
    virtual ~MenuExtraHost();

    /// Returns the height of the bar in points.
    virtual double statusBarThickness() const = 0;
    /// Schedules redrawing of @p view. Several requests before the next redraw count as one.
    virtual void viewNeedsDisplay(MenuExtraView& view) = 0;
    /// Notifies the bar that the item's length() has changed.
    virtual void lengthChanged(MenuExtra& extra) = 0;
    /// Opens the item's menu, or closes it if it is open. Does not wait for the menu to close.
    virtual void toggleMenu(MenuExtra& extra) = 0;
};

/// Returns the menu bar that hosts this program's items. Aborts if the host has not installed one.
MenuExtraHost& menuExtraHost();
template <>
MenuExtraHost* exchangeService<MenuExtraHost>(MenuExtraHost* service);

} // namespace platform
