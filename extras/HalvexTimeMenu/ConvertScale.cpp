#include "extras/HalvexTimeMenu/ConvertScale.h"

#include "extras/shared/Texts.h"
#include "platform/Graphics.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace platform;

namespace {

constexpr double kTickHeight = 3;
constexpr double kMidnightTop = 18; // of the line between the days
constexpr double kHoursTop = 5;     // below the top of the view
constexpr double kDatesTop = 18;
constexpr int kLabelledHours = 6;

} // namespace

void ConvertScale::show(std::vector<ConvertRange::Mark> marks, std::vector<Text> hours,
                        std::vector<Text> dates) {
    marks_ = std::move(marks);
    hours_ = std::move(hours);
    dates_ = std::move(dates);
    setNeedsDisplay(true);
}

double ConvertScale::positionOf(double place) const {
    // The slider runs from right to left too.
    const double visible = extras::isRightToLeft() ? 1 - place : place;
    return inset_ + visible * (frame().size.width - 2 * inset_);
}

void ConvertScale::drawRect(const Rect&) {
    drawTicks();
    drawTexts(hours_, kHoursTop, 0.75);
    drawTexts(dates_, kDatesTop, 1);
}

void ConvertScale::drawTicks() const {
    GraphicsContext& context = graphics().currentContext();
    const double top = frame().size.height;
    for (const auto& [step, place, hour] : marks_) {
        const double x = std::floor(positionOf(place));
        const double opacity = hour % kLabelledHours == 0 ? 0.5 : 0.25;
        context.fillRect({{x, top - kTickHeight}, {1, kTickHeight}}, calibratedWhite(1, opacity),
                         CompositingOperation::SourceOver);
        if (hour == 0 && place > 0 && place < 1)
            context.fillRect({{x, 0}, {1, top - kMidnightTop}}, calibratedWhite(1, 0.3),
                             CompositingOperation::SourceOver);
    }
}

void ConvertScale::drawTexts(const std::vector<Text>& texts, double top, double opacity) const {
    const TextAttributes attributes{.font = Font{"", systemFontSize(ControlSize::Mini)},
                                    .foregroundColor = calibratedWhite(1, opacity)};
    for (const auto& [place, text] : texts) {
        const AttributedString label(text, attributes);
        const Size size = graphics().sizeOfText(label);
        const double center = positionOf(place) + 0.5;
        const double left = std::clamp(std::round(center - size.width / 2), 0.0,
                                       std::max(0.0, frame().size.width - size.width));
        graphics().currentContext().drawText(label,
                                             {left, frame().size.height - top - size.height});
    }
}

AccessibleDescription ConvertScale::accessibleDescription() const {
    std::string days;
    for (const auto& [place, text] : dates_)
        days += (days.empty() ? "" : ", ") + text;
    return {.name = days};
}
