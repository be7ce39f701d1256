#include "platform/qt/PathOutline.h"

#include <optional>

namespace platform::qt {
namespace {

/// Appends lines, because QPainterPath's own curves are off by a quarter of a pixel, which is
/// visible in small corners.
void appendArc(QPainterPath& outline, const CornerArc& arc, const Viewport& viewport) {
    constexpr int kLines = 24;
    for (int i = 1; i <= kLines; ++i) {
        const double t = static_cast<double>(i) / kLines;
        const double u = 1 - t;
        const auto at = [&](double Point::*axis) {
            return u * u * u * arc.start.*axis + 3 * u * u * t * arc.firstControl.*axis +
                   3 * u * t * t * arc.secondControl.*axis + t * t * t * arc.end.*axis;
        };
        outline.lineTo(viewport.toPixels(Point{at(&Point::x), at(&Point::y)}));
    }
}

} // namespace

QPainterPath pathOutline(const BezierPath& path, const Viewport& viewport) {
    QPainterPath outline;
    outline.setFillRule(Qt::WindingFill);
    Point current;
    for (const BezierPath::Element& element : path.elements()) {
        std::optional<CornerArc> arc;
        switch (element.step) {
        case BezierPath::Step::MoveTo:
            outline.moveTo(viewport.toPixels(element.point));
            break;
        case BezierPath::Step::Close:
            outline.closeSubpath();
            continue;
        case BezierPath::Step::ArcFromPoint:
            arc = cornerArc(current, element.point, element.toPoint, element.radius);
            [[fallthrough]];
        case BezierPath::Step::LineTo:
            outline.lineTo(viewport.toPixels(arc ? arc->start : element.point));
        }
        if (arc)
            appendArc(outline, *arc, viewport);
        current = arc ? arc->end : element.point;
    }
    return outline;
}

} // namespace platform::qt
