#include "platform/widgets/Label.h"

namespace platform {

Label::Label(const Rect& frame, std::string text) : Control(frame), text_(std::move(text)) {}
Label::~Label() = default;

} // namespace platform
