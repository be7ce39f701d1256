#pragma once

#include "platform/widgets/Panel.h"

#include <memory>

/// A dark, translucent panel with a rounded title bar, which paints its own ground at each size. It
/// can carry an "i" button, and tells a target when the user releases the mouse in it. Main thread.
class HUDWindow : public platform::Panel {
  public:
    HUDWindow();
    ~HUDWindow() override;

    /// Gives the panel itself, or null when the desktop makes no window. Whatever @p styleMask
    /// says, the panel is titled, closable, miniaturisable, resizable, a utility and a HUD window.
    std::shared_ptr<platform::Panel> initWithContentRect(const platform::Rect& contentRect,
                                                         std::uint32_t styleMask,
                                                         platform::BackingStore backing,
                                                         bool defer) override;

    /// YES, although it is a utility panel.
    bool canBecomeKeyWindow() const override;
    /// The panel itself, for whoever takes anything that has a window.
    HUDWindow& window() { return *this; }

    /// The ground at the size of the frame, with the title, as a pattern colour: a new one each
    /// time. Corners are 6 points round; a title that does not fit ends in an ellipsis.
    platform::Color sizedHUDBackground() const;

    /// Paints the ground anew, and shows it at once while setFrame is at work.
    void windowDidResize();
    void setFrame(const platform::Rect& frame, bool display, bool animate) override;
    void setTitle(std::string title) override;

    /// Who is sent the action when the mouse is released in the panel, with the panel as its
    /// sender; held weakly.
    std::shared_ptr<platform::ActionTarget> target() const { return target_.lock(); }
    void setTarget(std::weak_ptr<platform::ActionTarget> target) { target_ = std::move(target); }
    const platform::Selector& action() const { return action_; }
    void setAction(platform::Selector action) { action_ = std::move(action); }
    void mouseUp(const platform::Event& event) override;

    /// Makes a button's title white, in the attributes of its first character otherwise. An empty
    /// title stays as it is.
    void makeButtonWhite(platform::Button& button) const;

    /// Adds the "i" button, 13 x 13 points, 3 points inside of the upper right corner of a
    /// rectangle of the size of @p rect at the content view's origin; it keeps its distance to the
    /// top and to the right. Without its image, which is logged as "bundle %@ (%@) missing image
    /// %@" with the bundle of the panel's class, it is an empty button.
    void addiButton(const platform::Rect& rect, std::weak_ptr<platform::ActionTarget> target,
                    platform::Selector selector);

    /// Adds nothing: the panel closes without a button.
    void addCloseButton(const std::shared_ptr<platform::ActionTarget>& target);

  private:
    bool forceDisplay_ = false;
    platform::Selector action_;
    std::weak_ptr<platform::ActionTarget> target_;
};
