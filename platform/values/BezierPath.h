#pragma once

#include "platform/values/Geometry.h"

#include <optional>
#include <vector>

namespace platform {

/// An outline to be filled: lines and arcs, in points. A regular value.
class BezierPath {
  public:
    enum class Step { MoveTo, LineTo, ArcFromPoint, Close };

    struct Element {
        Step step = Step::MoveTo;
        Point point;       ///< where it leads; of an arc, the corner that it rounds off
        Point toPoint{};   ///< of an arc: where the corner's second line leads
        double radius = 0; ///< of an arc
        friend bool operator==(const Element&, const Element&) = default;
    };

    void moveToPoint(Point point) { elements_.push_back({Step::MoveTo, point}); }
    void lineToPoint(Point point) { elements_.push_back({Step::LineTo, point}); }
    /// An arc of a circle that touches the line from the current point to @p corner and the line
    /// from there to @p toPoint, with a straight line to where it begins. It ends where it touches
    /// the second line. Points that make no corner give a line to @p corner.
    void appendArcFromPoint(Point corner, Point toPoint, double radius) {
        elements_.push_back({Step::ArcFromPoint, corner, toPoint, radius});
    }
    void closePath() { elements_.push_back({Step::Close, {}}); }

    /// As they were appended.
    const std::vector<Element>& elements() const { return elements_; }

    friend bool operator==(const BezierPath&, const BezierPath&) = default;

  private:
    std::vector<Element> elements_;
};

/// An arc of at most a half circle as a cubic curve.
struct CornerArc {
    Point start;
    Point firstControl;
    Point secondControl;
    Point end;
};

/// The arc that rounds off @p corner on the way from @p from to @p to; nothing when the three make
/// no corner (two of them are the same, or all are on one line) or there is no radius.
std::optional<CornerArc> cornerArc(Point from, Point corner, Point to, double radius);

} // namespace platform
