#include "platform/values/BezierPath.h"

#include <cmath>

namespace platform {
namespace {

/// Two lines at a smaller angle than this, in radians, count as one straight line.
constexpr double kSmallestTurn = 1e-9;

Point along(Point start, Point direction, double distance) {
    return {start.x + direction.x * distance, start.y + direction.y * distance};
}

std::optional<Point> direction(Point from, Point to) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (!std::isfinite(length) || length == 0)
        return std::nullopt;
    return Point{(to.x - from.x) / length, (to.y - from.y) / length};
}

} // namespace

std::optional<CornerArc> cornerArc(Point from, Point corner, Point to, double radius) {
    const auto back = direction(corner, from);
    const auto onward = direction(corner, to);
    if (!back || !onward || !std::isfinite(radius) || radius <= 0)
        return std::nullopt;
    const double cross = back->x * onward->y - back->y * onward->x;
    if (std::abs(cross) < kSmallestTurn)
        return std::nullopt;

    const double angle = std::abs(std::atan2(cross, back->x * onward->x + back->y * onward->y));
    const double distance =
        radius / std::tan(angle / 2); // from the corner to both points of contact
    // The control points of the arc lie on its tangents at both ends, which meet in the corner.
    const double sweep = std::acos(-1.0) - angle;
    const double control = distance - radius * 4 / 3 * std::tan(sweep / 4);
    return CornerArc{along(corner, *back, distance), along(corner, *back, control),
                     along(corner, *onward, control), along(corner, *onward, distance)};
}

} // namespace platform
