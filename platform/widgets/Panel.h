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

/// Windows of their own beside the bar. Points, origin at the bottom left of the first screen, y
/// upwards. Main thread.
namespace platform {

// What a window has, or-ed; the values are the platform's own.
inline constexpr std::uint32_t kTitledWindowMask = 0x1;
inline constexpr std::uint32_t kClosableWindowMask = 0x2;
inline constexpr std::uint32_t kMiniaturizableWindowMask = 0x4;
inline constexpr std::uint32_t kResizableWindowMask = 0x8;
inline constexpr std::uint32_t kUtilityWindowMask = 0x10;
inline constexpr std::uint32_t kHUDWindowMask = 0x2000;

/// The height of a titled panel's title bar, which lies above its content.
inline constexpr double kPanelTitleBarHeight = 19.0;

enum class BackingStore : int { Retained = 0, Nonretained = 1, Buffered = 2 };

/// What lies inside a panel's frame, below the title bar. Origin at the panel's bottom left.
class ContentView {
  public:
    Size size() const { return size_; }
    const std::vector<std::shared_ptr<Button>>& buttons() const { return buttons_; }
    /// Shows a button from now on, at its frame.
    void addButton(std::shared_ptr<Button> button);

  private:
    friend class Panel;
    void resize(Size size);

    Size size_;
    std::vector<std::shared_ptr<Button>> buttons_;
    PanelWindow* window_ = nullptr;
};

/// A floating window. Made with std::make_shared, then initialised once.
class Panel : public ActionSender, public std::enable_shared_from_this<Panel> {
  public:
    Panel();
    ~Panel() override;

    /// Makes the window for @p contentRect; the frame is higher by the title bar when @p styleMask
    /// has one. Gives the panel itself, or null when the desktop makes no window; no other
    /// operation may be called then. The panel is not shown yet. Whether a panel is kept in a
    /// buffer and made late (@p backing, @p defer) is up to the desktop.
    virtual std::shared_ptr<Panel> initWithContentRect(const Rect& contentRect,
                                                       std::uint32_t styleMask,
                                                       BackingStore backing, bool defer);

    const Rect& frame() const { return frame_; } ///< with the title bar
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

    /// Moves and resizes the panel and tells the resize observer of each new size. With @p animate
    /// that takes about 0.2 s, in which timers, notifications and requests are served.
    virtual void setFrame(const Rect& frame, bool display, bool animate);
    virtual void display();
    void makeKeyAndOrderFront();
    /// Takes the panel off the screen; it can be shown again.
    void orderOut();

    /// Whether the panel takes the keyboard. Only untitled and utility panels do not.
    virtual bool canBecomeKeyWindow() const;
    /// The user has let go of a mouse button on the background. Nothing here.
    virtual void mouseUp(const Event& event);

    /// Told after each change of the frame's size: one, or none.
    void setResizeObserver(std::function<void()> observer) { resized_ = std::move(observer); }
    /// Told when the user has closed the panel: one, or none.
    void setCloseObserver(std::function<void()> observer) { closed_ = std::move(observer); }

    // What the window calls: the user, or setFrame, has changed the frame; the user has closed it.
    void frameDidChange(const Rect& frame);
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
