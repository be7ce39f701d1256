#pragma once

#include "platform/qt/Mask.h"
#include "platform/qt/Pixel.h"

#include <QImage>
#include <QRectF>
#include <QTransform>

#include <vector>

namespace platform::qt {

/// The pixels that a rotated, mirrored or sheared image covers.
struct TurnedImage {
    Mask mask;
    std::vector<Pixel> colors; ///< premultiplied, 0 to 1, for each pixel of the mask's area
};

/// Stretches the rectangle @p part of @p source, in pixels, over the unit square, maps that by @p
/// toPixels, and returns the pixels inside @p limits. Interpolates between the source's pixels;
/// shrinking averages them. The source is premultiplied ARGB; the part is inside it and not empty.
TurnedImage turnedImage(const QImage& source, const QRectF& part, const QTransform& toPixels,
                        const QRect& limits);

} // namespace platform::qt
