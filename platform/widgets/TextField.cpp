#include "platform/widgets/TextField.h"

#include <algorithm>

namespace platform {

TextField::TextField(const Rect& frame) : Control(frame) {}
TextField::~TextField() = default;

void TextField::setText(std::string text) {
    std::ranges::replace(text, '\n', ' ');
    std::ranges::replace(text, '\r', ' ');
    committedText_ = text;
    change(text_, std::move(text));
}

void TextField::userDidEdit(std::string text) {
    text_ = std::move(text);
    if (const auto handler = changed_)
        handler(std::string(text_)); // the handler may replace the text
}

void TextField::userDidStep(int direction) {
    if (const auto handler = step_)
        handler(direction);
}

void TextField::userDidCommit() {
    committedText_ = text_;
    if (const auto handler = committed_)
        handler(std::string(text_));
}

void TextField::userDidCancel() {
    if (!hasUncommittedText())
        return;
    change(text_, std::string(committedText_));
    userDidEdit(committedText_);
}

} // namespace platform
