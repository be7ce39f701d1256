#pragma once

#include "platform/values/Geometry.h"

#include <QPointF>
#include <QRectF>

#include <cmath>

namespace platform::qt {

/// Maps points, with the origin at the bottom left and y up, to pixels of an image, with the origin
/// at the top left and y down.
struct Viewport {
    double height = 0; ///< of the image, in points
    double scale = 1;  ///< pixels per point

    QPointF toPixels(Point point) const { return {point.x * scale, (height - point.y) * scale}; }
    QRectF toPixels(const Rect& rect) const {
        const double top = height - rect.origin.y - rect.size.height;
        return {rect.origin.x * scale, top * scale, rect.size.width * scale,
                rect.size.height * scale};
    }
};

inline bool isFinite(Point point) {
    return std::isfinite(point.x) && std::isfinite(point.y);
}

inline bool isFinite(Size size) {
    return std::isfinite(size.width) && std::isfinite(size.height);
}

/// Whether @p rect is finite and not empty.
inline bool isDrawable(const Rect& rect) {
    return isFinite(rect.origin) && isFinite(rect.size) && rect.size.width > 0 &&
           rect.size.height > 0;
}

} // namespace platform::qt
