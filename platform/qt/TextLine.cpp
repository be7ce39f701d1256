#include "platform/qt/TextLine.h"

#include "platform/qt/Colors.h"
#include "platform/qt/Strings.h"

#include <QTextCharFormat>
#include <QTextOption>

#include <algorithm>
#include <cstddef>
#include <string_view>

namespace platform::qt {
namespace {

constexpr double kUnlimitedWidth = 1 << 24; // points

/// Returns the last boundary between UTF-8 characters at or before @p offset, or @p offset itself
/// in malformed text.
std::size_t characterBoundary(std::string_view text, std::size_t offset) {
    const auto continues = [&](std::size_t i) {
        return i < text.size() && (static_cast<unsigned char>(text[i]) & 0xC0) == 0x80;
    };
    std::size_t boundary = offset;
    while (boundary > 0 && offset - boundary < 3 && continues(boundary))
        --boundary;
    return continues(boundary) ? offset : boundary;
}

/// Replaces line ends and control characters by blanks.
QString singleLine(std::string_view utf8) {
    QString text = qString(utf8);
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

TextLine::TextLine(const AttributedString& text, Fonts& fonts, const QFont& defaultFont,
                   FontSmoothing smoothing) {
    QString characters;
    QList<QTextLayout::FormatRange> formats;
    const std::string_view bytes = text.string();
    for (const AttributedString::Run& run : text.runs()) {
        const std::size_t start = characterBoundary(bytes, run.location);
        const std::size_t end = characterBoundary(bytes, run.location + run.length);
        const auto position = static_cast<int>(characters.size());
        characters += singleLine(bytes.substr(start, end - start));
        const int length = static_cast<int>(characters.size()) - position;
        ranges_.push_back({position, length, run.attributes});
        QTextCharFormat format;
        if (run.attributes.font)
            format.setFont(fonts.font(*run.attributes.font, defaultFont, smoothing));
        if (run.attributes.foregroundColor)
            format.setForeground(qColor(*run.attributes.foregroundColor));
        if (!format.isEmpty())
            formats.push_back({position, length, format});
    }
    if (!characters.isEmpty())
        layOut(characters, formats, fonts.font({}, defaultFont, smoothing));
}

void TextLine::layOut(const QString& text, const QList<QTextLayout::FormatRange>& formats,
                      const QFont& font) {
    QTextOption option(Qt::AlignLeft | Qt::AlignAbsolute);
    option.setWrapMode(QTextOption::NoWrap);
    layout_.setTextOption(option);
    layout_.setCacheEnabled(true); // text that was measured is not shaped again to be drawn
    layout_.setFont(font);
    layout_.setText(text);
    layout_.setFormats(formats);
    layout_.beginLayout();
    QTextLine line = layout_.createLine();
    line.setLineWidth(kUnlimitedWidth);
    layout_.endLayout();
    size_ = {line.naturalTextWidth(), line.ascent() + line.descent()};
}

void TextLine::fill(QPainter& painter) const {
    layout_.draw(&painter, {});
}

std::vector<TextLine::Part> TextLine::parts() const {
    std::vector<Part> parts;
    for (const Range& range : ranges_) {
        if (range.length > 0)
            parts.push_back({layout_.glyphRuns(range.start, range.length), range.attributes});
    }
    return parts;
}

} // namespace platform::qt
