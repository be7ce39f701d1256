#pragma once

#include "platform/values/Geometry.h"
#include "platform/widgets/Action.h"

#include <cstdint>
#include <functional>
#include <string>
#include <utility>

namespace platform {

/// The flexible parts of a control, combined with |: its distances to the edges of its container,
/// its width and its height. Other parts keep their length when the container is resized.
namespace Autoresizing {
inline constexpr std::uint32_t kMinXMargin = 1;
inline constexpr std::uint32_t kWidth = 2;
inline constexpr std::uint32_t kMaxXMargin = 4;
inline constexpr std::uint32_t kMinYMargin = 8;
inline constexpr std::uint32_t kHeight = 16;
inline constexpr std::uint32_t kMaxYMargin = 32;
} // namespace Autoresizing

/// Returns the frame of a control after its container has been resized. Flexible parts in the same
/// direction share the change equally.
Rect autoresized(const Rect& frame, std::uint32_t mask, Size before, Size after);

/// Shows a control on the screen. Used by the window of the panel that contains the control.
class ControlDisplay : NonCopyable {
  public:
    virtual ~ControlDisplay();

    /// Called after settings, texts or values of the control have changed.
    virtual void controlDidChange() = 0;
    /// Moves the keyboard focus to the control.
    virtual void takeFocus() = 0;
};

/// What a panel contains: the common part of buttons, labels, sliders, text fields, lists and
/// views. Add a control to a panel with ContentView::addControl. It can be changed, moved, hidden,
/// disabled and removed while the panel is visible, also from its own handler.
///
/// Handlers are called when the user changes or activates a control, never when code does. They
/// run under the identifier of the owner that created the panel; see runGuarded. A control is
/// removed together with its panel, and its handlers are not called afterwards. Main thread only.
class Control : public ActionSender {
  public:
    /// @p frame is in points, in the coordinates of the content view that contains the control.
    explicit Control(const Rect& frame);
    ~Control() override;

    const Rect& frame() const { return frame_; }
    std::uint32_t autoresizingMask() const { return autoresizingMask_; }
    bool isHidden() const { return hidden_; }
    bool isEnabled() const { return enabled_; }
    const std::string& toolTip() const { return toolTip_; }
    /// Returns the control's name for screen readers. A button's defaults to its title; other
    /// controls have none unless a label names them (see Label::setNamedControl).
    virtual const std::string& accessibilityLabel() const { return accessibilityLabel_; }

    void setFrame(const Rect& frame) { change(frame_, Rect(frame)); }
    void setAutoresizingMask(std::uint32_t mask) { autoresizingMask_ = mask; }
    void setHidden(bool hidden) { change(hidden_, hidden); }
    /// Enables or disables the control, which is enabled at first. A disabled control is dimmed and
    /// ignores the mouse and the keyboard.
    void setEnabled(bool enabled) { change(enabled_, enabled); }
    /// Sets the text to show while the pointer rests on the control. Empty for none.
    void setToolTip(std::string text) { change(toolTip_, std::move(text)); }
    void setAccessibilityLabel(std::string label) { change(accessibilityLabel_, std::move(label)); }

    /// Moves the keyboard focus to the control, and selects the text of a text field. If the panel
    /// is hidden, the control has the focus when the panel is shown. Does nothing if the control is
    /// not in a panel.
    void focus();

    /// Sets what shows the control, or null. Used by the window of the panel.
    void setDisplay(ControlDisplay* display) { display_ = display; }

  protected:
    template <class T>
    void change(T& member, T value) {
        member = std::move(value);
        didChange();
    }
    void didChange();

  private:
    friend class ContentView;

    Rect frame_;
    std::uint32_t autoresizingMask_ = 0;
    bool hidden_ = false;
    bool enabled_ = true;
    bool inPanel_ = false;
    std::string toolTip_;
    std::string accessibilityLabel_;
    ControlDisplay* display_ = nullptr;
};

} // namespace platform
