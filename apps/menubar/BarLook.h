#pragma once

#include <QPainter>
#include <QPalette>

namespace apps {

/// The height of the bar in points.
inline constexpr int kBarHeight = 22;

/// Fills a part of the bar, in the bar's own height, with its ground and the line at its lower
/// edge.
inline void paintBarGround(QPainter& painter, const QRect& part, const QPalette& palette) {
    painter.fillRect(part, palette.window());
    painter.fillRect(part.left(), kBarHeight - 1, part.width(), 1, palette.mid());
}

} // namespace apps
