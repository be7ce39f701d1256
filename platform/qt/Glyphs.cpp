#include "platform/qt/Glyphs.h"

#include <QPainter>
#include <QPainterPath>
#include <QRawFont>

#include <algorithm>

namespace platform::qt {
namespace {

constexpr double kStrokeWidth = 1;

/// Calls @p visit(font, glyph, position) for each glyph.
template <class Visit>
void forEachGlyph(const QList<QGlyphRun>& runs, Visit visit) {
    for (const QGlyphRun& run : runs) {
        const QRawFont font = run.rawFont();
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < std::min(glyphs.size(), positions.size()); ++i)
            visit(font, glyphs[i], positions[i]);
    }
}

} // namespace

QRectF inkBounds(const QList<QGlyphRun>& glyphs) {
    QRectF bounds;
    forEachGlyph(glyphs, [&](const QRawFont& font, quint32 glyph, QPointF position) {
        bounds |= font.boundingRect(glyph).translated(position);
    });
    return bounds.isEmpty()
               ? bounds
               : bounds.adjusted(-kStrokeWidth, -kStrokeWidth, kStrokeWidth, kStrokeWidth);
}

void drawGlyphs(QPainter& painter, const QList<QGlyphRun>& glyphs, const QColor& color,
                TextDrawingMode mode) {
    if (mode == TextDrawingMode::Fill || mode == TextDrawingMode::FillStroke) {
        painter.setPen(color);
        for (const QGlyphRun& run : glyphs)
            painter.drawGlyphRun({}, run);
    }
    if (mode == TextDrawingMode::Stroke || mode == TextDrawingMode::FillStroke) {
        QPainterPath outline;
        forEachGlyph(glyphs, [&](const QRawFont& font, quint32 glyph, QPointF position) {
            outline.addPath(font.pathForGlyph(glyph).translated(position));
        });
        painter.strokePath(outline, QPen(color, kStrokeWidth));
    }
}

} // namespace platform::qt
