#pragma once

#include "platform/Graphics.h"
#include "platform/widgets/Action.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace platform {

// The values of these enumerations and masks are the platform's own.

enum class BezelStyle : int { Rounded = 1 };
enum class ButtonType : int {
    MomentaryLight = 0,
    MomentaryChange = 5, ///< while pressed, only the image changes
};
enum class ImagePosition : int { NoImage = 0, ImageOnly = 1, ImageLeft = 2, ImageBelow = 4 };
enum class FocusRingType : int { Default = 0, None = 1 };

/// The flexible parts of a view, combined with |: its distances to the edges of its container, its
/// width and its height. Other parts keep their length when the container is resized.
namespace Autoresizing {
inline constexpr std::uint32_t kMinXMargin = 1;
inline constexpr std::uint32_t kWidth = 2;
inline constexpr std::uint32_t kMaxXMargin = 4;
inline constexpr std::uint32_t kMinYMargin = 8;
inline constexpr std::uint32_t kHeight = 16;
inline constexpr std::uint32_t kMaxYMargin = 32;
} // namespace Autoresizing

/// Returns the frame of a view after its container has been resized. Flexible parts in the same
/// direction share the change equally.
Rect autoresized(const Rect& frame, std::uint32_t mask, Size before, Size after);

/// The state of a button in a panel, whose window displays it. Main thread only.
class Button final : public ActionSender {
  public:
    /// @p frame is in points, in the coordinates of the content view that contains the button.
    explicit Button(const Rect& frame);
    ~Button() override;

    /// The appearance of a button.
    struct Look {
        BezelStyle bezelStyle = BezelStyle::Rounded;
        ButtonType type = ButtonType::MomentaryLight;
        bool bordered = true;
        std::shared_ptr<Image> image;
        ImagePosition imagePosition = ImagePosition::NoImage;
        FocusRingType focusRingType = FocusRingType::Default;
    };

    const Rect& frame() const { return frame_; }
    std::uint32_t autoresizingMask() const { return autoresizingMask_; }
    const Look& look() const { return look_; }
    const std::string& title() const { return title_.string(); }
    const AttributedString& attributedTitle() const { return title_; }
    /// Returns the button's name for screen readers. Defaults to the title.
    const std::string& accessibilityLabel() const { return label_.empty() ? title() : label_; }
    std::shared_ptr<ActionTarget> target() const { return target_.lock(); }
    const Selector& action() const { return action_; }

    void setFrame(const Rect& frame);
    void setAutoresizingMask(std::uint32_t mask) { autoresizingMask_ = mask; }
    void setBezelStyle(BezelStyle style) { change(look_.bezelStyle, style); }
    void setButtonType(ButtonType type) { change(look_.type, type); }
    void setBordered(bool bordered) { change(look_.bordered, bordered); }
    /// Sets the image. Null removes it.
    void setImage(std::shared_ptr<Image> image) { change(look_.image, std::move(image)); }
    void setImagePosition(ImagePosition position) { change(look_.imagePosition, position); }
    void setFocusRingType(FocusRingType type) { change(look_.focusRingType, type); }
    /// Replaces the title with text without attributes.
    void setTitle(std::string title) { change(title_, AttributedString(std::move(title))); }
    void setAttributedTitle(AttributedString title) { change(title_, std::move(title)); }
    void setAccessibilityLabel(std::string label) { change(label_, std::move(label)); }
    /// Sets the receiver of the button's action, which is held weakly.
    void setTarget(std::weak_ptr<ActionTarget> target) { target_ = std::move(target); }
    void setAction(Selector action) { action_ = std::move(action); }

    /// Sends the action to the target, as a click does.
    void performClick() { sendAction(action_, target_, *this); }

    /// Sets the handler to call after the frame, title, label or look changes, replacing the
    /// previous one. Used by the window that displays the button.
    void setChangeHandler(std::function<void()> handler) { changed_ = std::move(handler); }

  private:
    template <class T>
    void change(T& member, T value) {
        member = std::move(value);
        if (changed_)
            changed_();
    }

    Rect frame_;
    std::uint32_t autoresizingMask_ = 0;
    Look look_;
    AttributedString title_{"Button"}; // the platform's default
    std::string label_;
    std::weak_ptr<ActionTarget> target_;
    Selector action_;
    std::function<void()> changed_;
};

} // namespace platform
