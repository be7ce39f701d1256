#include "platform/widgets/Button.h"

namespace platform {

Button::Button(const Rect& frame) : Control(frame) {}
Button::~Button() = default;

const std::string& Button::accessibilityLabel() const {
    const std::string& label = Control::accessibilityLabel();
    return label.empty() ? title() : label;
}

void Button::performClick() {
    if (const auto handler = handler_)
        handler();
    sendAction(action_, target_, *this);
}

} // namespace platform
