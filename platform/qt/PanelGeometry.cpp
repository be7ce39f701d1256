#include "platform/qt/PanelGeometry.h"

#include "platform/widgets/Panel.h"

#include <algorithm>
#include <cmath>

namespace platform::qt {
namespace {

constexpr int kEdgeWidth = 5; // inside of the frame
constexpr int kIndicatorSide = 15;
constexpr Size kMinimumSize{76, 40};
constexpr QSize kReachable{60, 10}; // the part of a title bar that can be dragged

} // namespace

QRect windowGeometry(const Rect& frame, int margin, const QRect& screen) {
    const int width = std::max(1, static_cast<int>(std::ceil(frame.size.width)));
    const int height = static_cast<int>(std::ceil(frame.size.height));
    const int left = screen.x() + static_cast<int>(std::lround(frame.origin.x));
    const int bottom = screen.y() + screen.height() - static_cast<int>(std::lround(frame.origin.y));
    return QRect(left, bottom - height, width, std::max(1, height))
        .adjusted(-margin, -margin, margin, margin);
}

Rect panelFrame(const QRect& window, int margin, const QRect& screen) {
    const QRect inner = window.adjusted(margin, margin, -margin, -margin);
    return {{double(inner.x() - screen.x()),
             double(screen.y() + screen.height() - inner.y() - inner.height())},
            {double(inner.width()), double(inner.height())}};
}

Rect reachableFrame(const Rect& frame, const QList<QRect>& screens) {
    const QRect& primary = screens.front();
    QRect window = windowGeometry(frame, 0, primary);
    QRect title = window;
    title.setHeight(static_cast<int>(kPanelTitleBarHeight));
    for (const QRect& screen : screens) {
        const QSize visible = (screen & title).size();
        if (visible.width() >= kReachable.width() && visible.height() >= kReachable.height())
            return frame;
    }
    window.moveLeft(
        std::max(primary.left(), std::min(window.left(), primary.right() + 1 - window.width())));
    window.moveTop(
        std::max(primary.top(), std::min(window.top(), primary.bottom() + 1 - window.height())));
    return panelFrame(window, 0, primary);
}

Rect draggedFrame(const Rect& frame, Qt::Edges edges, QPoint distance) {
    Rect result = frame;
    if (!edges) {
        result.origin.x += distance.x();
        result.origin.y -= distance.y();
        return result;
    }
    double dx = edges & Qt::LeftEdge ? -distance.x() : edges & Qt::RightEdge ? distance.x() : 0;
    double dy = edges & Qt::TopEdge ? -distance.y() : edges & Qt::BottomEdge ? distance.y() : 0;
    dx = std::max(dx, std::min(0.0, kMinimumSize.width - frame.size.width));
    dy = std::max(dy, std::min(0.0, kMinimumSize.height - frame.size.height));
    result.size = {frame.size.width + dx, frame.size.height + dy};
    if (edges & Qt::LeftEdge)
        result.origin.x -= dx;
    if (edges & Qt::BottomEdge)
        result.origin.y -= dy;
    return result;
}

Rect interpolatedFrame(const Rect& start, const Rect& end, double fraction) {
    const auto mix = [fraction](double a, double b) { return std::round(a + (b - a) * fraction); };
    return {{mix(start.origin.x, end.origin.x), mix(start.origin.y, end.origin.y)},
            {mix(start.size.width, end.size.width), mix(start.size.height, end.size.height)}};
}

Qt::Edges edgesAt(QPoint position, const QRect& frame, bool hasIndicator) {
    if (hasIndicator && position.x() > frame.right() - kIndicatorSide &&
        position.y() > frame.bottom() - kIndicatorSide)
        return Qt::RightEdge | Qt::BottomEdge;
    Qt::Edges edges;
    edges.setFlag(Qt::LeftEdge, position.x() < frame.left() + kEdgeWidth);
    edges.setFlag(Qt::RightEdge, position.x() > frame.right() - kEdgeWidth);
    edges.setFlag(Qt::TopEdge, position.y() < frame.top() + kEdgeWidth);
    edges.setFlag(Qt::BottomEdge, position.y() > frame.bottom() - kEdgeWidth);
    return edges;
}

Qt::CursorShape resizeCursor(Qt::Edges edges) {
    const bool horizontal = edges & (Qt::LeftEdge | Qt::RightEdge);
    const bool vertical = edges & (Qt::TopEdge | Qt::BottomEdge);
    if (horizontal && vertical)
        return edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge)
                   ? Qt::SizeFDiagCursor
                   : Qt::SizeBDiagCursor;
    return horizontal ? Qt::SizeHorCursor : vertical ? Qt::SizeVerCursor : Qt::ArrowCursor;
}

} // namespace platform::qt
