#include "platform/qt/TextLine.h"

#include <QPainter>
#include <QPainterPath>
#include <QRawFont>
#include <QTextCharFormat>
#include <QTextOption>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace platform::qt {
namespace {

constexpr double kEndlessLine = 1 << 24;
constexpr double kStrokeWidth = 1;

/// The boundary at or before @p offset that cuts no character in two.
std::size_t characterBoundary(std::string_view text, std::size_t offset) {
    const auto continues = [&](std::size_t i) {
        return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    std::size_t boundary = offset;
    while (boundary > 0 && offset - boundary < 3 && continues(boundary))
        --boundary;
    return continues(boundary) ? offset : boundary;
}

/// One line's worth of text: what would end a line, or act on it unseen, becomes a blank.
QString onOneLine(std::string_view utf8) {
    QString text = QString::fromUtf8(utf8.data(), static_cast<qsizetype>(utf8.size()));
    std::replace_if(
        text.begin(), text.end(),
        [](QChar c) {
            return c.category() == QChar::Other_Control || c == QChar::LineSeparator ||
                   c == QChar::ParagraphSeparator;
        },
        QLatin1Char(' '));
    return text;
}

} // namespace

QColor toQColor(const Color& color) {
    const auto component = [](double c) {
        return c > 0 ? static_cast<float>(std::min(c, 1.0)) : 0.0F;
    };
    return QColor::fromRgbF(component(color.red), component(color.green), component(color.blue),
                            component(color.alpha));
}

namespace {

/// Calls @p each(font, glyph, position) for all glyphs.
template <class Each>
void forEachGlyph(const QList<QGlyphRun>& runs, Each each) {
    for (const QGlyphRun& run : runs) {
        const QRawFont font = run.rawFont();
        const QList<quint32> glyphs = run.glyphIndexes();
        const QList<QPointF> positions = run.positions();
        for (qsizetype i = 0; i < std::min(glyphs.size(), positions.size()); ++i)
            each(font, glyphs[i], positions[i]);
    }
}

} // namespace

TextLine::TextLine(const AttributedString& text, Fonts& fonts, const QFont& defaultFont,
                   FontSmoothing smoothing) {
    QString characters;
    QList<QTextLayout::FormatRange> formats;
    const std::string_view bytes = text.string();
    for (const AttributedString::Run& run : text.runs()) {
        const std::size_t start = characterBoundary(bytes, run.location);
        const std::size_t end = characterBoundary(bytes, run.location + run.length);
        const auto position = static_cast<int>(characters.size());
        characters += onOneLine(bytes.substr(start, end - start));
        const int length = static_cast<int>(characters.size()) - position;
        stretches_.push_back({position, length, run.attributes});
        QTextCharFormat format;
        if (run.attributes.font)
            format.setFont(fonts.font(*run.attributes.font, defaultFont, smoothing));
        if (run.attributes.foregroundColor)
            format.setForeground(toQColor(*run.attributes.foregroundColor));
        if (!format.isEmpty())
            formats.push_back({position, length, format});
    }
    if (characters.isEmpty())
        return;

    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    layout_.setTextOption(option);
    layout_.setCacheEnabled(true); // what is measured is not shaped again to be drawn
    layout_.setFont(fonts.font({}, defaultFont, smoothing));
    layout_.setText(characters);
    layout_.setFormats(formats);
    layout_.beginLayout();
    layout_.createLine().setLineWidth(kEndlessLine);
    layout_.endLayout();
}

Size TextLine::size() const {
    if (layout_.lineCount() == 0)
        return {};
    const QTextLine line = layout_.lineAt(0);
    return {line.naturalTextWidth(), line.ascent() + line.descent()};
}

void TextLine::fill(QPainter& painter) const {
    layout_.draw(&painter, {});
}

std::vector<TextLine::Part> TextLine::parts() const {
    std::vector<Part> parts;
    for (const Stretch& stretch : stretches_) {
        if (stretch.length > 0)
            parts.push_back({layout_.glyphRuns(stretch.start, stretch.length), stretch.attributes});
    }
    return parts;
}

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
