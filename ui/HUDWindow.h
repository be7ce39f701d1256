#pragma once

#include "platform/widgets/Panel.h"

#include <memory>

/// A dark, translucent panel with a rounded title bar. It paints its own background, repaints it on
/// every resize, can show an "i" button, and sends an action when the mouse is released in the
/// panel. If memory runs out, operations log this and may be incomplete. Main thread only.
class HUDWindow : public platform::Panel {
  public:
    HUDWindow();
    ~HUDWindow() override;

    /// Returns this panel, or null if memory runs out or the desktop cannot create a window.
    /// Ignores
    /// @p styleMask: the panel is always a titled, closable, miniaturizable and resizable utility
    /// and HUD window.
    std::shared_ptr<platform::Panel> initWithContentRect(const platform::Rect& contentRect,
                                                         std::uint32_t styleMask,
                                                         platform::BackingStore backing,
                                                         bool defer) override;

    /// Returns true, although this is a utility panel.
    bool canBecomeKeyWindow() const override;
    /// Returns this panel, for callers that expect an object with a window.
    HUDWindow& window() { return *this; }

    /// Returns the background as a pattern colour: a new image of the size of the frame, with the
    /// title. The corner radius is 6 points. A title that does not fit ends in an ellipsis. If
    /// memory runs out, returns the clear colour.
    platform::Color sizedHUDBackground() const;

    /// Repaints the background. Displays it immediately if called during setFrame.
    void windowDidResize();
    void setFrame(const platform::Rect& frame, bool display, bool animate) override;
    void sizeDidChange() override;
    void setTitle(std::string title) override;

    /// The target and the action sent to it when the mouse is released in the panel, with the panel
    /// as the sender. The target is held weakly. Nothing is sent if the target has been destroyed
    /// or does not respond to the action.
    std::shared_ptr<platform::ActionTarget> target() const { return target_.lock(); }
    void setTarget(std::weak_ptr<platform::ActionTarget> target) { target_ = std::move(target); }
    const platform::Selector& action() const { return action_; }
    void setAction(platform::Selector action) { action_ = std::move(action); }
    void mouseUp(const platform::Event& event) override;

    /// Makes the title of @p button white. The whole title gets the other attributes of its first
    /// character. Does nothing if the title is empty.
    void makeButtonWhite(platform::Button& button) const;

    /// Adds the "i" button to the content view. It measures 13 x 13 points, and its origin lies
    /// 16 points left of and below the top right corner of a rectangle of the size of @p rect; the
    /// origin of @p rect is ignored. The button keeps its distance to the top and right edges.
    ///
    /// The image is "white_i" from the program's resources or, if missing there, from the bundle of
    /// the panel's class. If both are missing, the button is empty and "bundle %@ (%@) missing
    /// image %@" is logged.
    void addiButton(const platform::Rect& rect, std::weak_ptr<platform::ActionTarget> target,
                    platform::Selector selector);

    /// Does nothing: the panel has no close button of its own.
    void addCloseButton(const std::shared_ptr<platform::ActionTarget>& target);

  private:
    bool forceDisplay_ = false;
    bool repaintsWhenResized_ = false; ///< set at the end of the initialization
    platform::Selector action_;
    std::weak_ptr<platform::ActionTarget> target_;
};
