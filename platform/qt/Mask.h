#pragma once

#include "platform/qt/Pixel.h"

#include <QImage>
#include <QPainterPath>
#include <QPoint>
#include <QPointF>
#include <QRect>

#include <cstddef>
#include <optional>
#include <vector>

namespace platform::qt {

/// How much of each pixel of an area is covered, from 0 to 1, row by row.
struct Mask {
    QRect area;
    std::vector<float> coverage;

    std::size_t index(int x, int y) const {
        const auto width = static_cast<std::ptrdiff_t>(area.width());
        return static_cast<std::size_t>((y - area.top()) * width + x - area.left());
    }
    float at(int x, int y) const { return coverage[index(x, y)]; }
};

/// Returns the alpha of @p layer, whose top left pixel is at @p origin.
Mask alphaMask(const QImage& layer, QPoint origin);

/// Returns the part of an outline inside @p limits, with antialiased edges.
Mask outlineMask(const QPainterPath& outline, const QRect& limits);

/// Returns what @p colorAt(point) returns for the centre of each covered pixel, row by row. Pixels
/// for which this is std::nullopt become uncovered.
template <class ColorAt>
std::vector<Pixel> colorsOf(Mask& mask, ColorAt colorAt) {
    std::vector<Pixel> colors(mask.coverage.size());
    for (int y = mask.area.top(); y <= mask.area.bottom(); ++y) {
        for (int x = mask.area.left(); x <= mask.area.right(); ++x) {
            const std::size_t i = mask.index(x, y);
            const std::optional<Pixel> color =
                mask.coverage[i] > 0 ? colorAt(QPointF(x + 0.5, y + 0.5)) : std::nullopt;
            if (color)
                colors[i] = *color;
            else
                mask.coverage[i] = 0;
        }
    }
    return colors;
}

/// Returns where both masks cover.
Mask intersected(const Mask& one, const Mask& other);

} // namespace platform::qt
