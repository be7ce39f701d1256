#pragma once

#include <QImage>
#include <QPoint>
#include <QRect>

#include <cstddef>
#include <vector>

namespace platform::qt {

/// How much of each pixel of an area is covered, from 0 to 1, row by row.
struct Mask {
    QRect area;
    std::vector<float> coverage;

    float at(int x, int y) const {
        const auto width = static_cast<std::ptrdiff_t>(area.width());
        return coverage[static_cast<std::size_t>((y - area.top()) * width + x - area.left())];
    }
};

/// Returns the alpha of @p layer, whose top left pixel is at @p origin.
Mask alphaMask(const QImage& layer, QPoint origin);

} // namespace platform::qt
