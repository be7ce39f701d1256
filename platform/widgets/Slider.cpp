#include "platform/widgets/Slider.h"

#include <algorithm>
#include <cmath>

namespace platform {
namespace {

constexpr int kIntervals = 10000; // of a slider without tick marks to snap to

} // namespace

Slider::Slider(const Rect& frame) : Control(frame) {}
Slider::~Slider() = default;

void Slider::setRange(double minimum, double maximum) {
    minimum_ = std::isfinite(minimum) ? minimum : 0;
    maximum_ = std::isfinite(maximum - minimum_) ? std::max(minimum_, maximum) : minimum_;
    change(value_, allowed(value_));
}

void Slider::setValue(double value) {
    if (!std::isnan(value))
        change(value_, allowed(value));
}

void Slider::setNumberOfTickMarks(int count) {
    tickMarks_ = std::clamp(count, 0, kIntervals);
    change(value_, allowed(value_));
}

void Slider::setAllowsTickMarkValuesOnly(bool only) {
    snaps_ = only;
    change(value_, allowed(value_));
}

int Slider::intervals() const {
    return snaps() ? tickMarks_ - 1 : kIntervals;
}

void Slider::userDidMove(int position) {
    value_ = valueAt(position);
    if (const auto handler = handler_)
        handler(value_);
}

double Slider::valueAt(int position) const {
    return std::lerp(minimum_, maximum_, static_cast<double>(position) / intervals());
}

double Slider::allowed(double value) const {
    return snaps() ? valueAt(positionOf(value)) : std::clamp(value, minimum_, maximum_);
}

int Slider::positionOf(double value) const {
    if (maximum_ <= minimum_)
        return 0;
    const double fraction = std::clamp((value - minimum_) / (maximum_ - minimum_), 0.0, 1.0);
    return static_cast<int>(std::lround(fraction * intervals()));
}

} // namespace platform
