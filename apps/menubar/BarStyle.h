#pragma once

#include <QPainter>
#include <QPalette>

namespace apps {

// Lengths are in points.

/// The height of the bar.
inline constexpr int kBarHeight = 22;

/// Paints the bar's background and its bottom line into @p area, which must have the bar's height.
inline void paintBarBackground(QPainter& painter, const QRect& area, const QPalette& palette) {
    painter.fillRect(area, palette.window());
    painter.fillRect(area.left(), kBarHeight - 1, area.width(), 1, palette.mid());
}

/// Paints the highlight of an item that covers @p area, which must have the bar's height.
inline void paintBarHighlight(QPainter& painter, const QRect& area, const QPalette& palette) {
    constexpr double kRadius = 4;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(palette.highlight());
    painter.drawRoundedRect(area.adjusted(1, 2, -1, -3), kRadius, kRadius);
    painter.restore();
}

} // namespace apps
