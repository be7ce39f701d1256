#pragma once

#include "platform/Graphics.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>

#include <vector>

namespace platform::qt {

// The numbered compositing operations on pixels. Targets and layers are premultiplied ARGB images,
// geometry is in device pixels with y downwards. Each operation is computed without rounding, in
// proportion to how much of a pixel the shape covers, and rounded once when it is stored; a pixel
// that the shape does not touch stays as it is. What lies outside of the target is left out.

/// How much of each pixel of an area is covered, 0 to 1, row by row.
struct Mask {
    QRect area;
    std::vector<float> coverage;

    float* row(int y);
    const float* row(int y) const;
};

/// Fills a rectangle with a colour.
void compositeRect(QImage& target, const QRectF& shape, const QColor& color,
                   CompositingOperation operation);

/// Lays the pixels of @p layer, whose top left pixel is at @p origin, times @p fraction of their
/// opacity, into the rectangle @p shape. The layer covers all of the shape that is in the target.
void compositeImage(QImage& target, const QRectF& shape, const QImage& layer, QPoint origin,
                    double fraction, CompositingOperation operation);

/// Colours what a mask covers.
void compositeMask(QImage& target, const Mask& mask, const QColor& color,
                   CompositingOperation operation);

/// Lays @p glyphs at @p origin: drawn glyphs on a transparent ground, and @p coverage, the same
/// ones drawn opaque, so that its alpha is their shape.
void compositeGlyphs(QImage& target, const QImage& glyphs, const QImage& coverage, QPoint origin,
                     CompositingOperation operation);

} // namespace platform::qt
