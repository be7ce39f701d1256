#include "platform/values/BezierPath.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <initializer_list>
#include <limits>
#include <numbers>

namespace platform {
namespace {

/// Two lines at a smaller angle than this, in radians, count as one straight line.
constexpr double kSmallestTurn = 1e-9;

Point along(Point start, Point direction, double distance) {
    return {start.x + direction.x * distance, start.y + direction.y * distance};
}

/// Returns the point at a fraction of the way from @p start to @p end.
Point between(Point start, Point end, double fraction) {
    return {start.x + (end.x - start.x) * fraction, start.y + (end.y - start.y) * fraction};
}

std::optional<Point> direction(Point from, Point to) {
    const double length = std::hypot(to.x - from.x, to.y - from.y);
    if (!std::isfinite(length) || length == 0)
        return std::nullopt;
    return Point{(to.x - from.x) / length, (to.y - from.y) / length};
}

bool areFinite(std::initializer_list<Point> points) {
    return std::all_of(points.begin(), points.end(), [](Point point) {
        return std::isfinite(point.x) && std::isfinite(point.y);
    });
}

bool isFilled(const Rect& rect) {
    const Point end{rect.origin.x + rect.size.width, rect.origin.y + rect.size.height};
    return areFinite({rect.origin, end}) && rect.size.width > 0 && rect.size.height > 0;
}

/// Returns the distance of the control points from the ends of an arc with a radius of 1.
double controlDistance(double sweep) {
    return 4.0 / 3 * std::tan(sweep / 4);
}

/// Returns how many degrees an arc turns in its direction, from 0 to 360.
double sweepOf(double startAngle, double endAngle, ArcDirection direction) {
    const double sweep =
        direction == ArcDirection::Clockwise ? startAngle - endAngle : endAngle - startAngle;
    if (sweep >= 360)
        return 360;
    const double rest = std::fmod(sweep, 360);
    return rest < 0 ? rest + 360 : rest;
}

/// Collects the smallest rectangle that contains points.
class Extent {
  public:
    void add(Point point) {
        low_ = {std::min(low_.x, point.x), std::min(low_.y, point.y)};
        high_ = {std::max(high_.x, point.x), std::max(high_.y, point.y)};
    }
    void add(const CubicCurve& curve) {
        add(curve.end);
        addTurns(curve, &Point::x);
        addTurns(curve, &Point::y);
    }
    Rect rect() const {
        return low_.x > high_.x ? Rect() : Rect{low_, {high_.x - low_.x, high_.y - low_.y}};
    }

  private:
    /// Adds the points at which a coordinate of the curve has an extreme.
    void addTurns(const CubicCurve& curve, double Point::*axis) {
        const double first = curve.firstControl.*axis - curve.start.*axis;
        const double second = curve.secondControl.*axis - curve.firstControl.*axis;
        const double third = curve.end.*axis - curve.secondControl.*axis;
        // The derivative is 3 (a t² + b t + first). This form of the solutions allows a to be 0.
        const double a = first - 2 * second + third;
        const double b = 2 * (second - first);
        const double root = std::sqrt(b * b - 4 * a * first);
        const double q = -(b + std::copysign(root, b)) / 2;
        for (const double t : {q / a, first / q})
            if (t > 0 && t < 1)
                add(curve.at(t));
    }

    static constexpr double kHuge = std::numeric_limits<double>::infinity();

    Point low_{kHuge, kHuge};
    Point high_{-kHuge, -kHuge};
};

} // namespace

void BezierPath::moveToPoint(Point point) {
    if (!areFinite({point}))
        return;
    elements_.push_back({Step::MoveTo, point});
    current_ = start_ = point;
}

void BezierPath::lineToPoint(Point point) {
    if (!current_)
        return moveToPoint(point);
    if (!areFinite({point}))
        return;
    elements_.push_back({Step::LineTo, point});
    current_ = point;
}

void BezierPath::curveToPoint(Point point, Point controlPoint1, Point controlPoint2) {
    if (!areFinite({point, controlPoint1, controlPoint2}))
        return;
    if (!current_)
        moveToPoint(controlPoint1);
    elements_.push_back({Step::CurveTo, point, controlPoint1, controlPoint2});
    current_ = point;
}

void BezierPath::quadraticCurveToPoint(Point point, Point controlPoint) {
    const Point start = current_.value_or(controlPoint);
    curveToPoint(point, between(start, controlPoint, 2.0 / 3),
                 between(point, controlPoint, 2.0 / 3));
}

void BezierPath::appendArcFromPoint(Point corner, Point toPoint, double radius) {
    if (!areFinite({corner, toPoint}))
        return;
    if (!current_)
        return moveToPoint(corner);
    const auto arc = cornerArc(*current_, corner, toPoint, radius);
    elements_.push_back({Step::ArcFromPoint, corner, {}, {}, toPoint, radius});
    current_ = arc ? arc->end : corner;
}

void BezierPath::appendArcWithCenter(Point center, double radius, double startAngle,
                                     double endAngle, ArcDirection direction) {
    if (!areFinite({center, {startAngle, endAngle}, {radius, 0}}) || radius <= 0)
        return;
    constexpr double kRadians = std::numbers::pi / 180;
    const double sign = direction == ArcDirection::Clockwise ? -1 : 1;
    const double sweep = sweepOf(startAngle, endAngle, direction) * kRadians;
    const int quarters = std::max(1, static_cast<int>(std::ceil(sweep / (std::numbers::pi / 2))));
    const double turn = sign * sweep / quarters;
    const double tangent = radius * controlDistance(turn);

    double angle = std::fmod(startAngle, 360) * kRadians;
    Point at = along(center, {std::cos(angle), std::sin(angle)}, radius);
    lineToPoint(at);
    for (int i = 0; sweep > 0 && i < quarters; ++i) {
        const Point control = along(at, {-std::sin(angle), std::cos(angle)}, tangent);
        angle += turn;
        const Point end = along(center, {std::cos(angle), std::sin(angle)}, radius);
        curveToPoint(end, control, along(end, {-std::sin(angle), std::cos(angle)}, -tangent));
        at = end;
    }
}

void BezierPath::closePath() {
    if (!current_)
        return;
    elements_.push_back({Step::Close, {}});
    current_ = start_;
}

void BezierPath::appendRect(const Rect& rect) {
    appendRoundedRect(rect, 0, 0);
}

void BezierPath::appendOvalInRect(const Rect& rect) {
    appendRoundedRect(rect, rect.size.width / 2, rect.size.height / 2);
}

void BezierPath::appendRoundedRect(const Rect& rect, double xRadius, double yRadius) {
    if (!isFilled(rect))
        return;
    const bool rounded = xRadius > 0 && yRadius > 0;
    const double rx = rounded ? std::min(xRadius, rect.size.width / 2) : 0;
    const double ry = rounded ? std::min(yRadius, rect.size.height / 2) : 0;
    const auto& [left, bottom] = rect.origin;
    const double right = left + rect.size.width;
    const double top = bottom + rect.size.height;

    const auto side = [&](Point end) {
        if (end != *current_)
            lineToPoint(end);
    };
    const auto corner = [&](Point end, Point at) {
        if (rounded)
            quarterToPoint(end, at);
    };
    moveToPoint({left + rx, bottom});
    side({right - rx, bottom});
    corner({right, bottom + ry}, {right, bottom});
    side({right, top - ry});
    corner({right - rx, top}, {right, top});
    side({left + rx, top});
    corner({left, top - ry}, {left, top});
    side({left, bottom + ry});
    corner({left + rx, bottom}, {left, bottom});
    closePath();
}

void BezierPath::quarterToPoint(Point point, Point corner) {
    const double fraction = controlDistance(std::numbers::pi / 2);
    curveToPoint(point, between(*current_, corner, fraction), between(point, corner, fraction));
}

void BezierPath::appendBezierPath(const BezierPath& other) {
    elements_.reserve(elements_.size() + other.elements_.size());
    // By index, because other may be this path.
    for (std::size_t i = 0, count = other.elements_.size(); i < count; ++i)
        elements_.push_back(other.elements_[i]);
    if (!other.current_)
        return;
    current_ = other.current_;
    start_ = other.start_;
}

Rect BezierPath::bounds() const {
    Extent extent;
    Point current;
    Point start;
    for (const Element& element : elements_) {
        Point end = element.point;
        if (element.step == Step::MoveTo)
            start = end;
        if (element.step == Step::Close)
            end = start;
        if (element.step == Step::CurveTo)
            extent.add(CubicCurve{current, element.firstControl, element.secondControl, end});
        const auto arc = element.step == Step::ArcFromPoint
                             ? cornerArc(current, end, element.toPoint, element.radius)
                             : std::nullopt;
        if (arc) {
            extent.add(arc->start);
            extent.add(*arc);
            end = arc->end;
        }
        extent.add(end);
        current = end;
    }
    return extent.rect();
}

Point CubicCurve::at(double t) const {
    const double u = 1 - t;
    const auto coordinate = [&](double Point::*axis) {
        return u * u * u * start.*axis + 3 * u * u * t * firstControl.*axis +
               3 * u * t * t * secondControl.*axis + t * t * t * end.*axis;
    };
    return {coordinate(&Point::x), coordinate(&Point::y)};
}

std::optional<CubicCurve> cornerArc(Point from, Point corner, Point to, double radius) {
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
    return CubicCurve{along(corner, *back, distance), along(corner, *back, control),
                      along(corner, *onward, control), along(corner, *onward, distance)};
}

} // namespace platform
