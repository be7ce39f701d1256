#pragma once

#include "platform/widgets/MenuExtra.h"

#include <cstdint>
#include <memory>

class HalvexMenuExtraBase;

/// Shows a menu extra in the bar: its icon at the left, its title to the right of that, both
/// centred vertically. Turns a press of the mouse into one of the menu extra's click operations.
/// Main thread.
class HalvexMenuViewBase : public platform::MenuExtraView {
  public:
    using platform::MenuExtraView::initWithFrame;
    /// Gives the view itself, or null when the platform's class gives null. @p menuExtra stays the
    /// caller's and outlives the view's use.
    virtual std::shared_ptr<HalvexMenuViewBase> initWithFrame(const platform::Rect& frame,
                                                              HalvexMenuExtraBase* menuExtra);

    /// Kept for subclasses; nothing here reads it.
    std::int32_t clickCount() const { return clickCount_; }
    void setClickCount(std::int32_t count) { clickCount_ = count; }

    /// Whether the title has a shadow. NO unless a subclass sets it.
    bool drawShadow() const { return drawShadow_; }
    void setDrawShadow(bool draw) { drawShadow_ = draw; }

    /// YES: a click counts even while another program is active.
    bool acceptsFirstMouse(const platform::Event& event) const override;

    /// Calls, first match wins, clickWithCtrlKey for Control or button 3, clickWithShiftKey for
    /// Shift, clickWithAltKey for Option, else clicked; unless that answers YES, the menu opens.
    /// Option and Control together switch the verbose log lines of the view on (the preferences
    /// file is then shown and nothing else happens) and off again.
    void mouseDown(const platform::Event& event) override;

    /// Draws the title, then the image. Only the height of @p rect counts.
    void drawRect(const platform::Rect& rect) override;

  private:
    bool switchDebug() const; ///< between 0 and 1; whether it is on now
    bool handleClick(const platform::Event& event) const;
    void drawTitle(const platform::AttributedString& title, double x, double height) const;
    void drawImage(const platform::Image& image, double height) const;

    HalvexMenuExtraBase* menuExtra_ = nullptr;
    std::int32_t clickCount_ = 0;
    bool drawShadow_ = false;
};
