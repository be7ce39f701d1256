#include "platform/qt/GradientColors.h"

#include "platform/qt/Colors.h"

#include <algorithm>
#include <cmath>
#include <iterator>

namespace platform::qt {
namespace {

double product(Point one, Point other) {
    return one.x * other.x + one.y * other.y;
}

Point difference(Point end, Point start) {
    return {end.x - start.x, end.y - start.y};
}

bool isVisible(const LinearGradient& gradient) {
    const Point line = difference(gradient.end, gradient.start);
    return isFinite(gradient.start) && isFinite(gradient.end) && product(line, line) > 0;
}

bool isVisible(const RadialGradient& gradient) {
    const auto isRadius = [](double radius) { return std::isfinite(radius) && radius >= 0; };
    return isFinite(gradient.startCenter) && isFinite(gradient.endCenter) &&
           isRadius(gradient.startRadius) && isRadius(gradient.endRadius) &&
           (gradient.startCenter != gradient.endCenter ||
            gradient.startRadius != gradient.endRadius);
}

std::optional<double> locationOf(const LinearGradient& gradient, Point point) {
    const Point line = difference(gradient.end, gradient.start);
    return product(difference(point, gradient.start), line) / product(line, line);
}

/// Returns the largest t for which @p point is on the circle between the start (0) and the end (1),
/// or beyond them: its distance from start + t * (end - start) is the radius there.
std::optional<double> locationOf(const RadialGradient& gradient, Point point) {
    const Point line = difference(gradient.endCenter, gradient.startCenter);
    const Point from = difference(point, gradient.startCenter);
    const double growth = gradient.endRadius - gradient.startRadius;
    // a t² - 2 b t + c = 0
    const double a = product(line, line) - growth * growth;
    const double b = product(from, line) + gradient.startRadius * growth;
    const double c = product(from, from) - gradient.startRadius * gradient.startRadius;
    const auto hasRadius = [&](double t) {
        return std::isfinite(t) && gradient.startRadius + t * growth >= 0;
    };
    if (a == 0)
        return b != 0 && hasRadius(c / (2 * b)) ? std::optional(c / (2 * b)) : std::nullopt;
    const double root = std::sqrt(b * b - a * c); // NaN outside of the cone
    const double one = (b + root) / a;
    const double other = (b - root) / a;
    for (const double t : {std::max(one, other), std::min(one, other)})
        if (hasRadius(t))
            return t;
    return std::nullopt;
}

} // namespace

std::optional<GradientColors> GradientColors::create(const Gradient& gradient,
                                                     const Viewport& viewport) {
    GradientColors colors;
    const auto& stops = std::visit(
        [](const auto& any) -> auto& { return any.stops; }, gradient);
    for (const GradientStop& stop : stops) {
        if (stop.color.space == ColorSpace::Pattern)
            return std::nullopt;
        const double least = colors.stops_.empty() ? 0 : colors.stops_.back().location;
        if (!std::isnan(stop.location))
            colors.stops_.push_back(
                {std::clamp(stop.location, least, 1.0), premultiplied(qColor(stop.color))});
    }
    const bool visible = std::visit([](const auto& any) { return isVisible(any); }, gradient);
    if (!visible || colors.stops_.empty())
        return std::nullopt;
    colors.shape_ = gradient;
    colors.toPoints_ = viewport.toPixels().inverted();
    return colors;
}

std::optional<Pixel> GradientColors::at(QPointF pixel) const {
    const QPointF at = toPoints_.map(pixel);
    const auto location = std::visit(
        [&](const auto& any) {
            return locationOf(any, Point{at.x(), at.y()});
        },
        shape_);
    return location ? std::optional(colorAt(*location)) : std::nullopt;
}

Pixel GradientColors::colorAt(double location) const {
    const auto next = std::find_if(stops_.begin(), stops_.end(),
                                   [&](const Stop& stop) { return stop.location > location; });
    if (next == stops_.begin())
        return next->color;
    const Stop& last = *std::prev(next);
    if (next == stops_.end())
        return last.color;
    const auto fraction =
        static_cast<float>((location - last.location) / (next->location - last.location));
    return componentwise(last.color, next->color,
                         [&](float from, float to) { return from + (to - from) * fraction; });
}

} // namespace platform::qt
