#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

namespace platform {

class MenuExtra;
class MenuExtraView;

/// The bar, as an item needs it.
class MenuExtraHost : NonCopyable {
  public:
    virtual ~MenuExtraHost();

    /// The height of the bar in points.
    virtual double statusBarThickness() const = 0;
    /// A view wants to be drawn again; may be told more than once before the host does.
    virtual void viewNeedsDisplay(MenuExtraView& view) = 0;
    /// The item wants another width.
    virtual void lengthChanged(MenuExtra& extra) = 0;
    /// Opens the item's menu below it, or closes it when it is open. Does not wait for it to close.
    virtual void toggleMenu(MenuExtra& extra) = 0;
};

/// Installed by a host; there is none before, and who asks ends the program.
MenuExtraHost& menuExtraHost();
template <>
MenuExtraHost* exchangeService<MenuExtraHost>(MenuExtraHost* service);

} // namespace platform
