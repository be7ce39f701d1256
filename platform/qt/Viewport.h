#pragma once

#include "platform/values/Geometry.h"

#include <QPointF>
#include <QRectF>
#include <QTransform>

#include <cmath>

namespace platform::qt {

/// Maps points, with the origin at the bottom left and y up, to pixels of an image, with the origin
/// at the top left and y down.
struct Viewport {
    double height = 0;      ///< of the image, in points
    double scale = 1;       ///< pixels per point
    double left = 0;        ///< the left edge of the image, in points
    QTransform transform{}; ///< maps the coordinates that are drawn with to points

    /// Whether rectangles stay rectangles, with the same side at the top.
    bool keepsRects() const {
        return transform.isIdentity() || (transform.type() <= QTransform::TxScale &&
                                          transform.m11() > 0 && transform.m22() > 0);
    }
    /// Whether something can be drawn: not after scaling by 0 or beyond the largest number.
    bool isUsable() const {
        return transform.isIdentity() ||
               (transform.isInvertible() && std::isfinite(transform.determinant()) &&
                std::isfinite(transform.dx()) && std::isfinite(transform.dy()));
    }

    QPointF toPixels(Point point) const {
        const QPointF at = transform.map(QPointF(point.x, point.y));
        return {(at.x() - left) * scale, (height - at.y()) * scale};
    }
    /// Maps a rectangle. keepsRects() must be true.
    QRectF toPixels(const Rect& rect) const {
        const Rect at = inPoints(rect);
        const double top = height - at.origin.y - at.size.height;
        return {(at.origin.x - left) * scale, top * scale, at.size.width * scale,
                at.size.height * scale};
    }
    /// Applies only the transform. keepsRects() must be true.
    Rect inPoints(const Rect& rect) const {
        if (transform.isIdentity())
            return rect;
        const QPointF origin = transform.map(QPointF(rect.origin.x, rect.origin.y));
        return {{origin.x(), origin.y()},
                {rect.size.width * transform.m11(), rect.size.height * transform.m22()}};
    }
    QTransform toPixels() const {
        return transform * QTransform(scale, 0, 0, -scale, -left * scale, height * scale);
    }
    /// Returns the number of pixels per unit of each axis.
    QSizeF pixelsPerUnit() const {
        if (transform.isIdentity())
            return {scale, scale};
        return {scale * std::hypot(transform.m11(), transform.m12()),
                scale * std::hypot(transform.m21(), transform.m22())};
    }
    /// Returns the viewport of a part of the image whose top left pixel is at @p origin.
    Viewport movedTo(QPoint origin) const {
        return {height - origin.y() / scale, scale, left + origin.x() / scale, transform};
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
