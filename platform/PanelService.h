#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/values/Color.h"
#include "platform/values/Geometry.h"

#include <memory>
#include <string>

namespace platform {

class Button;
class Control;
class Panel;

/// The appearance of a panel, and whether its background can be dragged to move it.
struct PanelLook {
    Color backgroundColor; ///< a pattern is tiled from the bottom left of the frame
    double alphaValue = 1; ///< opacity of the whole panel, 0 to 1
    bool opaque = true;
    bool hasShadow = false;
    bool movableByWindowBackground = false; ///< draggable anywhere except on controls
    bool showsResizeIndicator = false;
};

/// The on-screen window of a panel, owned by the panel. Changes are shown at the next redraw unless
/// an operation states otherwise. Main thread only.
class PanelWindow : NonCopyable {
  public:
    virtual ~PanelWindow();

    virtual void setTitle(const std::string& title) = 0;
    virtual void setLook(const PanelLook& look) = 0;
    /// Changes the frame, in steps if @p animate is set, and calls Panel::frameDidChange for each
    /// step. With @p display, redraws immediately.
    virtual void setFrame(const Rect& frame, bool display, bool animate) = 0;
    /// Shows a control. Its class must be one of the controls of platform/widgets.
    virtual void addControl(const std::shared_ptr<Control>& control) = 0;
    /// Stops showing a control that was added. Afterwards the window does not refer to it.
    virtual void removeControl(Control& control) = 0;
    /// Sets the button that Return clicks. Null for none.
    virtual void setDefaultButton(Button* button) = 0;
    /// Redraws the whole window immediately.
    virtual void display() = 0;
    virtual void makeKeyAndOrderFront() = 0;
    virtual void orderOut() = 0;
};

/// Creates the windows of panels. Main thread only.
class PanelService : NonCopyable {
  public:
    virtual ~PanelService();

    /// Creates a window for @p panel, whose frame and style mask are already set. Returns null and
    /// logs the reason on failure.
    virtual std::unique_ptr<PanelWindow> makeWindow(Panel& panel) = 0;
};

/// Returns the host's panel service. Aborts if the host has not installed one.
PanelService& panelService();
template <>
PanelService* exchangeService<PanelService>(PanelService* service);

} // namespace platform
