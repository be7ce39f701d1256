#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Mask.h"
#include "platform/qt/Pixel.h"

#include <QColor>
#include <QImage>
#include <QPoint>
#include <QRect>

#include <vector>

namespace platform::qt {

// The numbered compositing operations on premultiplied ARGB images. Geometry is in pixels, with y
// down, and is clipped to the target. Results are computed in floating point, weighted by how much
// of a pixel the shape covers, and rounded once. Pixels outside the shape do not change. Unknown
// operations draw nothing.

/// Whether QPainter's default composition mode computes @p operation.
bool isSourceOver(CompositingOperation operation);

/// Fills a rectangle with a colour.
void compositeRect(QImage& target, const QRectF& shape, const QColor& color,
                   CompositingOperation operation);

/// Draws @p layer, whose top left pixel is at @p origin, inside the rectangle @p shape. The layer's
/// opacity is multiplied by @p fraction. The layer must contain the visible part of the shape.
void compositeImage(QImage& target, const QRectF& shape, const QImage& layer, QPoint origin,
                    double fraction, CompositingOperation operation);

/// Fills the covered area of a mask with a colour.
void compositeMask(QImage& target, const Mask& mask, const QColor& color,
                   CompositingOperation operation);

/// Draws the colour of each pixel of a mask's area where the mask covers. @p colors has components
/// of 0 to 1, row by row.
void compositeColors(QImage& target, const Mask& mask, const std::vector<Pixel>& colors,
                     CompositingOperation operation);

/// Replaces the pixels of a mask's area with those of @p changed, in proportion to their coverage.
/// @p changed has the size of the area; the area must be inside the target.
void replaceThrough(QImage& target, const Mask& mask, const QImage& changed);

/// Draws @p glyphs, a transparent layer with glyphs on it, at @p origin. @p coverage is a layer
/// with the same glyphs drawn opaque: its alpha is their shape.
void compositeGlyphs(QImage& target, const QImage& glyphs, const QImage& coverage, QPoint origin,
                     CompositingOperation operation);

} // namespace platform::qt
