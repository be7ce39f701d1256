#pragma once

#include "platform/Graphics.h"

#include <QColor>
#include <QGlyphRun>
#include <QList>
#include <QRectF>

class QPainter;

namespace platform::qt {

/// Returns an area, in points, that contains everything that drawGlyphs draws at the origin.
QRectF inkBounds(const QList<QGlyphRun>& glyphs);

/// Draws glyphs at the painter's origin. Outlines are 1 point wide.
void drawGlyphs(QPainter& painter, const QList<QGlyphRun>& glyphs, const QColor& color,
                TextDrawingMode mode);

} // namespace platform::qt
