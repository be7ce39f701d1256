#pragma once

#include "platform/GraphicsContext.h"
#include "platform/widgets/MenuExtra.h"

#include <cstdint>
#include <memory>
#include <string>

class HalvexMenuExtraBase;

/// Draws a menu extra in the bar: the icon at the left, the title to its right, both centred
/// vertically. Dispatches mouse clicks to the menu extra. Main thread only.
class HalvexMenuViewBase : public platform::MenuExtraView {
  public:
    using platform::MenuExtraView::initWithFrame;
    /// Returns this view, or null if MenuExtraView::initWithFrame fails. @p menuExtra is not owned
    /// and must outlive the view.
    virtual std::shared_ptr<HalvexMenuViewBase> initWithFrame(const platform::Rect& frame,
                                                              HalvexMenuExtraBase* menuExtra);

    /// A click count for subclasses; not read by this class. 0 by default; HalvexMenuExtraBase sets
    /// it to 2.
    std::int32_t clickCount() const { return clickCount_; }
    void setClickCount(std::int32_t count) { clickCount_ = count; }

    /// Whether the title is drawn with a shadow. False by default.
    bool drawShadow() const { return drawShadow_; }
    void setDrawShadow(bool draw) { drawShadow_ = draw; }

    /// Returns true: clicks are handled even while another program is active.
    bool acceptsFirstMouse(const platform::Event& event) const override;

    /// Calls the first operation that matches: clickWithCtrlKey for Control or button 3 (back),
    /// clickWithShiftKey for Shift, clickWithAltKey for Option, clicked otherwise. If the operation
    /// returns false, opens the menu, or closes it if it is open.
    ///
    /// Control and Option together toggle the verbose logging of all views (myDebugME). If that
    /// turns it on, the click only reveals the preferences file in the file browser. If that turns
    /// it off, the click is handled as a Control-click.
    void mouseDown(const platform::Event& event) override;

    /// Draws the title, then the image. Only the height of @p rect is used. Logs
    /// "CalendarMenuView both nil" if there is neither. Outside of drawing, or if memory runs out,
    /// logs this and draws nothing or only part.
    void drawRect(const platform::Rect& rect) override;

    // These call the menu extra's operations.

    bool scrollWheel(const platform::WheelEvent& event) override;
    bool acceptsDrop(const platform::DroppedData& data) const override;
    bool performDrop(const platform::DroppedData& data) override;
    std::string toolTip() const override;
    platform::AccessibleDescription accessibleDescription() const override;

  private:
    /// Returns whether verbose logging is now on.
    bool toggleVerboseLogging() const;
    /// Returns whether the menu extra handled the click.
    bool dispatchClick(const platform::Event& event) const;
    void drawTitle(platform::GraphicsContext& context, const platform::AttributedString& title,
                   double x, double height) const;
    void drawImage(platform::GraphicsContext& context, const platform::Image& image,
                   double height) const;

    HalvexMenuExtraBase* menuExtra_ = nullptr;
    std::int32_t clickCount_ = 0;
    bool drawShadow_ = false;
};
