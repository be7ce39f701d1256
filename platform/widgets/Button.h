#pragma once

#include "platform/Graphics.h"
#include "platform/widgets/Control.h"

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

/// A button in a panel. A click calls its handler and sends its action. Main thread only.
class Button final : public Control {
  public:
    /// @p frame is in points, in the coordinates of the content view.
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

    const Look& look() const { return look_; }
    const std::string& title() const { return title_.string(); }
    const AttributedString& attributedTitle() const { return title_; }
    const std::string& accessibilityLabel() const override;
    std::shared_ptr<ActionTarget> target() const { return target_.lock(); }
    const Selector& action() const { return action_; }

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
    /// Sets the function to call when the button is clicked, replacing the previous one.
    void setHandler(std::function<void()> handler) { handler_ = std::move(handler); }
    /// Sets the receiver of the button's action, which is held weakly.
    void setTarget(std::weak_ptr<ActionTarget> target) { target_ = std::move(target); }
    void setAction(Selector action) { action_ = std::move(action); }

    /// Calls the handler, then sends the action to the target, as a click does.
    void performClick();

  private:
    Look look_;
    AttributedString title_{"Button"}; // the platform's default
    std::function<void()> handler_;
    std::weak_ptr<ActionTarget> target_;
    Selector action_;
};

} // namespace platform
