#include "platform/widgets/Control.h"

namespace platform {
namespace {

/// An interval on one axis.
struct Span {
    double start;
    double length;
};

/// Distributes @p change equally among the flexible parts. @p low is whether the margin below the
/// span is flexible, @p middle its length, @p high the margin above.
Span resized(Span span, double change, bool low, bool middle, bool high) {
    const int flexible = int{low} + int{middle} + int{high};
    if (flexible == 0)
        return span;
    const double share = change / flexible;
    return {span.start + (low ? share : 0), span.length + (middle ? share : 0)};
}

} // namespace

Rect autoresized(const Rect& frame, std::uint32_t mask, Size before, Size after) {
    using namespace Autoresizing;
    const auto has = [mask](std::uint32_t bit) { return (mask & bit) != 0; };
    const Span x = resized({frame.origin.x, frame.size.width}, after.width - before.width,
                           has(kMinXMargin), has(kWidth), has(kMaxXMargin));
    const Span y = resized({frame.origin.y, frame.size.height}, after.height - before.height,
                           has(kMinYMargin), has(kHeight), has(kMaxYMargin));
    return {{x.start, y.start}, {x.length, y.length}};
}

ControlDisplay::~ControlDisplay() = default;

Control::Control(const Rect& frame) : frame_(frame) {}
Control::~Control() = default;

void Control::focus() {
    if (display_)
        display_->takeFocus();
}

void Control::didChange() {
    if (display_)
        display_->controlDidChange();
}

} // namespace platform
