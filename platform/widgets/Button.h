#pragma once

#include "platform/Graphics.h"
#include "platform/widgets/Action.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace platform {

// The numbers are the platform's own.

enum class BezelStyle : int { Rounded = 1 };
enum class ButtonType : int {
    MomentaryLight = 0,
    MomentaryChange = 5, ///< shows that it is pressed by its picture alone
};
enum class ImagePosition : int { NoImage = 0, ImageOnly = 1, ImageLeft = 2, ImageBelow = 4 };
enum class FocusRingType : int { Default = 0, None = 1 };

/// What of a view follows when what it lies in is resized, or-ed: its distance to an edge, or its
/// width or height. What is not in the mask stays as it is.
namespace Autoresizing {
inline constexpr std::uint32_t kMinXMargin = 1;
inline constexpr std::uint32_t kWidth = 2;
inline constexpr std::uint32_t kMaxXMargin = 4;
inline constexpr std::uint32_t kMinYMargin = 8;
inline constexpr std::uint32_t kHeight = 16;
inline constexpr std::uint32_t kMaxYMargin = 32;
} // namespace Autoresizing

/// @p frame after what it lies in has been resized; several flexible parts of a direction share the
/// change evenly.
Rect autoresized(const Rect& frame, std::uint32_t mask, Size before, Size after);

/// A button of a panel. A class of settings; the desktop shows it. Main thread.
class Button final : public ActionSender {
  public:
    /// @p frame is in points of the view that it is added to.
    explicit Button(const Rect& frame);
    ~Button() override;

    /// What the button looks like.
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
    /// What a screen reader calls the button; its title when nothing else was set.
    const std::string& accessibilityLabel() const { return label_.empty() ? title() : label_; }
    std::shared_ptr<ActionTarget> target() const { return target_.lock(); }
    const Selector& action() const { return action_; }

    void setFrame(const Rect& frame);
    void setAutoresizingMask(std::uint32_t mask) { autoresizingMask_ = mask; }
    void setBezelStyle(BezelStyle style) { change(look_.bezelStyle, style); }
    void setButtonType(ButtonType type) { change(look_.type, type); }
    void setBordered(bool bordered) { change(look_.bordered, bordered); }
    /// Null takes the image away.
    void setImage(std::shared_ptr<Image> image) { change(look_.image, std::move(image)); }
    void setImagePosition(ImagePosition position) { change(look_.imagePosition, position); }
    void setFocusRingType(FocusRingType type) { change(look_.focusRingType, type); }
    /// Gives the title new text without attributes.
    void setTitle(std::string title) { change(title_, AttributedString(std::move(title))); }
    void setAttributedTitle(AttributedString title) { change(title_, std::move(title)); }
    void setAccessibilityLabel(std::string label) { change(label_, std::move(label)); }
    /// Whoever the button tells of clicks; held weakly.
    void setTarget(std::weak_ptr<ActionTarget> target) { target_ = std::move(target); }
    void setAction(Selector action) { action_ = std::move(action); }

    /// As if clicked: sends the action with the button as its sender.
    void performClick() { sendAction(action_, target_, *this); }

    /// Who shows the button and wants to hear that it is another: one, or none.
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
    AttributedString title_{"Button"}; // as a new button of the platform's has it
    std::string label_;
    std::weak_ptr<ActionTarget> target_;
    Selector action_;
    std::function<void()> changed_;
};

} // namespace platform
