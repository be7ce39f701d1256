#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/values/Color.h"
#include "platform/values/Geometry.h"

#include <memory>
#include <string>

namespace platform {

class Button;
class Panel;

/// What a panel looks like and lets the user do.
struct PanelLook {
    Color backgroundColor; ///< a pattern is repeated from the bottom left of the frame
    double alphaValue = 1; ///< of the whole panel
    bool opaque = true;
    bool hasShadow = false;
    bool movableByWindowBackground = false; ///< dragged by any point that is no button
    bool showsResizeIndicator = false;
};

/// The window on the screen that shows a panel; the desktop makes it. What it is told is shown with
/// the next changes unless it says at once. It outlives no panel.
class PanelWindow : NonCopyable {
  public:
    virtual ~PanelWindow();

    virtual void setTitle(const std::string& title) = 0;
    virtual void setLook(const PanelLook& look) = 0;
    /// Adopts the frame, in steps when @p animate says so, and tells Panel::frameDidChange of each;
    /// @p display shows it at once.
    virtual void setFrame(const Rect& frame, bool display, bool animate) = 0;
    virtual void addButton(const std::shared_ptr<Button>& button) = 0;
    /// Draws all of it at once.
    virtual void display() = 0;
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;
};

/// Makes windows. Main thread.
class PanelService : NonCopyable {
  public:
    virtual ~PanelService();

    /// A window for a panel, whose frame and style mask are set; null when there can be none, which
    /// is logged.
    virtual std::unique_ptr<PanelWindow> makeWindow(Panel& panel) = 0;
};

PanelService& panelService();
template <>
PanelService* exchangeService<PanelService>(PanelService* service);

} // namespace platform
