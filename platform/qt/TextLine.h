#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Fonts.h"

#include <QGlyphRun>
#include <QList>
#include <QTextLayout>

#include <vector>

class QPainter;

namespace platform::qt {

/// Attributed text, laid out on one line. Coordinates are in points, from the top left corner of
/// the line, with y down. Qt handles right-to-left text, ligatures and fallback fonts. Main thread.
class TextLine {
  public:
    /// The glyphs of one run of the text.
    struct Part {
        QList<QGlyphRun> glyphs;
        TextAttributes attributes;
    };

    TextLine(const AttributedString& text, Fonts& fonts, const QFont& defaultFont,
             FontSmoothing smoothing);

    /// Returns the advance width and the ascent plus descent, or 0 x 0 for empty text.
    Size size() const { return size_; }
    std::vector<Part> parts() const;
    /// Draws all glyphs filled, in the colours of their runs or else the painter's. The line's top
    /// left corner is at the painter's origin. Much faster than drawing the parts.
    void fill(QPainter& painter) const;

  private:
    struct Range {
        int start = 0;  ///< UTF-16 units
        int length = 0; ///< UTF-16 units
        TextAttributes attributes;
    };

    void layOut(const QString& text, const QList<QTextLayout::FormatRange>& formats,
                const QFont& font);

    QTextLayout layout_;
    Size size_;
    std::vector<Range> ranges_;
};

} // namespace platform::qt
