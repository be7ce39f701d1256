#pragma once

#include <QImage>
#include <QRect>

namespace platform::qt {

/// The pixels of @p area when the rectangle @p part of @p source is stretched over the rectangle
/// @p destination. Enlarging blends neighbours, shrinking averages all that a pixel takes in, and
/// whole pixels on whole pixels are copied as they are; nothing outside of the part shines in.
/// All images are premultiplied ARGB, all rectangles in pixels with y downwards and not empty;
/// @p part lies within the source and @p area reaches at most a pixel beyond the destination.
QImage resampled(const QImage& source, const QRectF& part, const QRectF& destination,
                 const QRect& area);

} // namespace platform::qt
