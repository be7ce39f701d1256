#pragma once

#include <QPainter>
#include <QPalette>

namespace apps {

/// The height of the bar in points.
inline constexpr int kBarHeight = 22;

/// Paints the bar's background and its bottom line into @p area, which must have the bar's height.
inline void paintBarBackground(QPainter& painter, const QRect& area, const QPalette& palette) {
    painter.fillRect(area, palette.window());
    painter.fillRect(area.left(), kBarHeight - 1, area.width(), 1, palette.mid());
}

} // namespace apps
