#pragma once

#include "platform/values/Geometry.h"

#include <optional>
#include <vector>

namespace platform {

/// Which points are inside a path. The values are the platform's own.
enum class WindingRule : int {
    NonZero = 0, ///< those around which the path turns, counted by direction
    EvenOdd = 1, ///< those from which a ray crosses the path an odd number of times
};

/// The direction in which an arc is drawn.
enum class ArcDirection { Counterclockwise, Clockwise };

/// A path of lines, curves and arcs, in points. A regular value.
///
/// A path consists of subpaths. A line, curve or arc starts at the current point, which is where
/// the element before it ended; after closePath, it is the start of the closed subpath. An element
/// with a coordinate that is NaN or infinite is not appended, so a path has only finite points.
/// Without a current point, a line or an arc starts a subpath at its own first point, and a curve
/// at its first control point.
class BezierPath {
  public:
    enum class Step { MoveTo, LineTo, CurveTo, ArcFromPoint, Close };

    struct Element {
        Step step = Step::MoveTo;
        Point point;           ///< the end of a line or curve, or the corner that an arc rounds
        Point firstControl{};  ///< curves only
        Point secondControl{}; ///< curves only
        Point toPoint{};       ///< arcs only: the end of the line that leaves the corner
        double radius = 0;     ///< arcs only
        friend bool operator==(const Element&, const Element&) = default;
    };

    void moveToPoint(Point point);
    void lineToPoint(Point point);
    /// Appends a cubic curve to @p point.
    void curveToPoint(Point point, Point controlPoint1, Point controlPoint2);
    /// Appends a quadratic curve to @p point, as the cubic curve with the same shape.
    void quadraticCurveToPoint(Point point, Point controlPoint);
    /// Appends an arc that rounds the corner between the lines from the current point to @p corner
    /// and from there to @p toPoint, and a line to the start of the arc. The arc ends at its point
    /// of contact with the second line. If cornerArc() finds no corner to round, appends a line to
    /// @p corner instead.
    void appendArcFromPoint(Point corner, Point toPoint, double radius);
    /// Appends a line to the start of an arc of a circle, and the arc. Angles are in degrees,
    /// counterclockwise from the x axis. If the angles are 360 degrees or more apart in the given
    /// direction, the arc is a full circle; otherwise, it ends where it first reaches @p endAngle.
    /// Appends nothing if the radius is not positive.
    void appendArcWithCenter(Point center, double radius, double startAngle, double endAngle,
                             ArcDirection direction = ArcDirection::Counterclockwise);
    void closePath();

    // Each of these appends a closed subpath that runs counterclockwise, or nothing if the width or
    // the height is not positive.

    void appendRect(const Rect& rect);
    /// Appends the ellipse that fills @p rect.
    void appendOvalInRect(const Rect& rect);
    /// Appends a rectangle whose corners are quarters of an ellipse with these radii. A radius is
    /// limited to half of the side; if one is not positive, the corners are square.
    void appendRoundedRect(const Rect& rect, double xRadius, double yRadius);

    /// Appends all subpaths of @p other. The winding rule does not change.
    void appendBezierPath(const BezierPath& other);

    WindingRule windingRule() const { return windingRule_; }
    /// Sets the rule by which the path is filled and clips. The initial value is NonZero.
    void setWindingRule(WindingRule rule) { windingRule_ = rule; }

    /// Returns std::nullopt for an empty path.
    std::optional<Point> currentPoint() const { return current_; }
    /// Returns the smallest rectangle that contains all lines and curves, without any line width.
    /// An empty path has an empty rectangle at the origin.
    Rect bounds() const;
    /// Returns the elements in the order they were appended.
    const std::vector<Element>& elements() const { return elements_; }

    friend bool operator==(const BezierPath&, const BezierPath&) = default;

  private:
    /// Appends a curve along a quarter of an ellipse around @p corner's opposite corner.
    void quarterToPoint(Point point, Point corner);

    std::vector<Element> elements_;
    WindingRule windingRule_ = WindingRule::NonZero;
    std::optional<Point> current_;
    Point start_; // of the last subpath
};

/// A cubic Bézier curve.
struct CubicCurve {
    Point start;
    Point firstControl;
    Point secondControl;
    Point end;

    /// Returns the point at @p t, from 0 (the start) to 1 (the end).
    Point at(double t) const;
};

/// Returns the arc that rounds @p corner on the way from @p from to @p to, or std::nullopt if the
/// points are on one line, two of them are equal, or the radius is not positive and finite.
std::optional<CubicCurve> cornerArc(Point from, Point corner, Point to, double radius);

} // namespace platform
