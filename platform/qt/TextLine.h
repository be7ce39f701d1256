#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Fonts.h"

#include <QGlyphRun>
#include <QList>
#include <QTextLayout>

#include <vector>

class QPainter;

namespace platform::qt {

/// Attributed text laid out on one line, with y downwards from the line's top left corner, in
/// points. Right-to-left text, ligatures and fallback fonts are Qt's affair. Main thread.
class TextLine {
  public:
    /// The glyphs of one run of the text.
    struct Part {
        QList<QGlyphRun> glyphs;
        TextAttributes attributes;
    };

    TextLine(const AttributedString& text, Fonts& fonts, const QFont& defaultFont,
             FontSmoothing smoothing);

    /// Advance width, and ascent plus descent; 0 x 0 for empty text.
    Size size() const;
    std::vector<Part> parts() const;
    /// Fills all glyphs, in their runs' colours or the painter's, with the line's top left corner
    /// at the painter's origin. Far cheaper than drawing the parts.
    void fill(QPainter& painter) const;

  private:
    struct Stretch {
        int start = 0; ///< UTF-16 units
        int length = 0;
        TextAttributes attributes;
    };

    QTextLayout layout_;
    std::vector<Stretch> stretches_;
};

/// A colour as Qt has it; components beyond 0 and 1 count as these.
QColor toQColor(const Color& color);

/// What glyphs may colour when drawn at the origin, in points.
QRectF inkBounds(const QList<QGlyphRun>& glyphs);

/// Draws glyphs at the painter's origin; outlines are a point wide.
void drawGlyphs(QPainter& painter, const QList<QGlyphRun>& glyphs, const QColor& color,
                TextDrawingMode mode);

} // namespace platform::qt
