#pragma once

#include "platform/PanelService.h"
#include "platform/values/Color.h"
#include "platform/values/Event.h"
#include "platform/values/Geometry.h"
#include "platform/widgets/Action.h"
#include "platform/widgets/Button.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

/// Floating windows. Coordinates are in points; the origin is at the bottom left of the first
/// screen and y increases upwards. Main thread only.
namespace platform {

// Style masks of a window, combined with |. The values are the platform's own.
inline constexpr std::uint32_t kTitledWindowMask = 0x1;
inline constexpr std::uint32_t kClosableWindowMask = 0x2;
inline constexpr std::uint32_t kMiniaturizableWindowMask = 0x4;
inline constexpr std::uint32_t kResizableWindowMask = 0x8;
inline constexpr std::uint32_t kUtilityWindowMask = 0x10;
inline constexpr std::uint32_t kHUDWindowMask = 0x2000;

/// The height of the title bar above a titled panel's content, in points.
inline constexpr double kPanelTitleBarHeight = 19.0;

/// The values are the platform's own.
enum class BackingStore : int { Retained = 0, Nonretained = 1, Buffered = 2 };

/// The area of a panel below its title bar. The origin is at the bottom left of the panel.
class ContentView {
  public:
    ContentView() = default;
    ContentView(const ContentView&) = delete;
    ContentView& operator=(const ContentView&) = delete;
    ~ContentView();

    Size size() const { return size_; }
    /// Returns the controls in the order in which they were added. Tab moves the keyboard focus in
    /// this order.
    const std::vector<std::shared_ptr<Control>>& controls() const { return controls_; }
    /// Returns the buttons among the controls.
    std::vector<std::shared_ptr<Button>> buttons() const;
    std::shared_ptr<Button> defaultButton() const { return defaultButton_; }

    /// Adds a control, which is displayed at its frame. @throws Exception
    /// (NSInvalidArgumentException) if it is null or already in a panel.
    void addControl(std::shared_ptr<Control> control);
    void addButton(std::shared_ptr<Button> button);
    /// Removes a control. Does nothing if it is not in this panel.
    void removeControl(const std::shared_ptr<Control>& control);

    /// Sets the button that Return clicks, unless another button or a list with an activation
    /// handler has the keyboard focus. Null, the default, for none: Return then counts as a click
    /// on the background if that has the focus. @throws Exception (NSInvalidArgumentException) if
    /// the button is not in this panel.
    void setDefaultButton(std::shared_ptr<Button> button);

  private:
    friend class Panel;
    void resize(Size size);

    Size size_;
    std::vector<std::shared_ptr<Control>> controls_;
    std::shared_ptr<Button> defaultButton_;
    PanelWindow* window_ = nullptr;
};

/// A floating window. Create it with std::make_shared and initialize it once.
class Panel : public ActionSender, public std::enable_shared_from_this<Panel> {
  public:
    Panel();
    ~Panel() override;

    /// Creates the window, without showing it. The frame is @p contentRect plus the title bar if
    /// @p styleMask has one. The desktop ignores @p backing and @p defer. Returns the panel itself,
    /// or null if the window could not be created; in that case, call no other function.
    virtual std::shared_ptr<Panel> initWithContentRect(const Rect& contentRect,
                                                       std::uint32_t styleMask,
                                                       BackingStore backing, bool defer);

    const Rect& frame() const { return frame_; } ///< including the title bar
    std::uint32_t styleMask() const { return styleMask_; }
    const std::string& title() const { return title_; }
    const PanelLook& look() const { return look_; }
    ContentView& contentView() { return contentView_; }

    virtual void setTitle(std::string title);
    void setBackgroundColor(Color color) { setLook(look_.backgroundColor, std::move(color)); }
    void setAlphaValue(double alpha) { setLook(look_.alphaValue, alpha); }
    void setOpaque(bool opaque) { setLook(look_.opaque, opaque); }
    void setHasShadow(bool has) { setLook(look_.hasShadow, has); }
    void setMovableByWindowBackground(bool movable) {
        setLook(look_.movableByWindowBackground, movable);
    }
    void setShowsResizeIndicator(bool shows) { setLook(look_.showsResizeIndicator, shows); }

    /// Moves and resizes the panel, and calls the resize observer after each change of size. With
    /// @p animate, takes about 0.2 s and processes timers, notifications and requests meanwhile; a
    /// panel that they release is destroyed afterwards.
    /// With @p display, redraws immediately.
    virtual void setFrame(const Rect& frame, bool display, bool animate);
    /// Redraws the panel immediately.
    virtual void display();
    /// Shows the panel in front of the others and gives it the keyboard focus. If it was hidden and
    /// its title bar is outside of all screens, moves it to the first one. If the panel was
    /// hidden and no control has requested the focus, the first text field or list gets it, or else
    /// the background.
    void makeKeyAndOrderFront();
    /// Hides the panel. It can be shown again.
    void orderOut();

    /// Returns whether the panel accepts the keyboard focus. The default is true for titled panels
    /// that are not utility panels.
    virtual bool canBecomeKeyWindow() const;
    /// Called when a mouse button is released on the background. The default does nothing.
    virtual void mouseUp(const Event& event);

    /// Sets the function to call after the size has changed, replacing the previous one.
    void setResizeObserver(std::function<void()> observer) { resized_ = std::move(observer); }
    /// Sets the function to call after the user has closed the panel, replacing the previous one.
    void setCloseObserver(std::function<void()> observer) { closed_ = std::move(observer); }

    /// Called after the size has changed, before the resize observer. The default does nothing.
    virtual void sizeDidChange() {}

    /// Called by the window after the user or setFrame has changed the frame.
    void frameDidChange(const Rect& frame);
    /// Called by the window after the user has closed it.
    void didClose();

  private:
    template <class T>
    void setLook(T& setting, T value) {
        setting = std::move(value);
        window_->setLook(look_);
    }

    Rect frame_;
    std::uint32_t styleMask_ = 0;
    std::string title_;
    PanelLook look_;
    ContentView contentView_;
    std::function<void()> resized_;
    std::function<void()> closed_;
    std::unique_ptr<PanelWindow> window_;
};

} // namespace platform
