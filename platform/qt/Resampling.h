#pragma once

#include <QImage>
#include <QRect>

namespace platform::qt {

/// Stretches the rectangle @p part of @p source over the rectangle @p destination and returns the
/// pixels of @p area. Enlarging interpolates between neighbours; shrinking averages all source
/// pixels under a result pixel; pixels whose size and position do not change are copied exactly.
/// Pixels outside @p part have no effect.
///
/// Images are premultiplied ARGB; rectangles are in pixels, with y down, and not empty. @p part is
/// inside the source. @p area extends at most 1 pixel beyond the destination.
QImage resampled(const QImage& source, const QRectF& part, const QRectF& destination,
                 const QRect& area);

} // namespace platform::qt
