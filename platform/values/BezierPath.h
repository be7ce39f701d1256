#pragma once

#include "platform/values/Geometry.h"

#include <optional>
#include <vector>

namespace platform {

/// A path of lines and arcs, in points. A regular value.
class BezierPath {
  public:
    enum class Step { MoveTo, LineTo, ArcFromPoint, Close };

    struct Element {
        Step step = Step::MoveTo;
        Point point;       ///< the end of a line, or the corner that an arc rounds
        Point toPoint{};   ///< arcs only: the end of the line that leaves the corner
        double radius = 0; ///< arcs only
        friend bool operator==(const Element&, const Element&) = default;
    };

    void moveToPoint(Point point) { elements_.push_back({Step::MoveTo, point}); }
    void lineToPoint(Point point) { elements_.push_back({Step::LineTo, point}); }
    /// Appends an arc that rounds the corner between the lines from the current point to @p corner
    /// and from there to @p toPoint, and a line to the start of the arc. The arc ends at its point
    /// of contact with the second line. If cornerArc() finds no corner to round, appends a line to
    /// @p corner instead.
    void appendArcFromPoint(Point corner, Point toPoint, double radius) {
        elements_.push_back({Step::ArcFromPoint, corner, toPoint, radius});
    }
    void closePath() { elements_.push_back({Step::Close, {}}); }

    /// Returns the elements in the order they were appended.
    const std::vector<Element>& elements() const { return elements_; }

    friend bool operator==(const BezierPath&, const BezierPath&) = default;

  private:
    std::vector<Element> elements_;
};

/// A cubic curve that approximates an arc of at most half a circle.
struct CornerArc {
    Point start;
    Point firstControl;
    Point secondControl;
    Point end;
};

/// Returns the arc that rounds @p corner on the way from @p from to @p to, or std::nullopt if the
/// points are on one line, two of them are equal, or the radius is not positive and finite.
std::optional<CornerArc> cornerArc(Point from, Point corner, Point to, double radius);

} // namespace platform
