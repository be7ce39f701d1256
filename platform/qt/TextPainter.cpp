#include "platform/qt/TextPainter.h"

#include "platform/qt/Blur.h"
#include "platform/qt/Colors.h"
#include "platform/qt/Compositing.h"
#include "platform/qt/Glyphs.h"
#include "platform/qt/Layers.h"
#include "platform/qt/Truncation.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace platform::qt {
namespace {

/// Pixels; a wider blur takes memory and is invisible.
constexpr double kLargestDeviation = 128;

/// Pixels; antialiased edges extend this far beyond an outline.
constexpr int kInkMargin = 2;

/// Indexed by TextAlignment: the fraction of the spare width that goes to the left of the text.
constexpr std::array<double, 3> kLeftFraction = {0, 1, 0.5};

struct GlyphStyle {
    QTransform toPixels;
    TextDrawingMode mode;
};

template <class Iterator, class ColorOf>
void drawParts(QImage& target, Iterator first, Iterator last, const GlyphStyle& style,
               ColorOf colorOf) {
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(style.toPixels);
    for (; first != last; ++first)
        drawGlyphs(painter, first->glyphs, colorOf(*first), style.mode);
}

/// Returns an area inside @p limits, in pixels, that contains all ink of the parts there.
template <class Iterator>
QRect inkArea(Iterator first, Iterator last, const QTransform& toPixels, const QRect& limits) {
    QRectF bounds;
    for (; first != last; ++first)
        bounds |= inkBounds(first->glyphs);
    if (bounds.isEmpty())
        return {};
    const QRectF pixels =
        toPixels.mapRect(bounds).adjusted(-kInkMargin, -kInkMargin, kInkMargin, kInkMargin) &
        QRectF(limits);
    return pixels.isEmpty() ? QRect() : pixels.toAlignedRect();
}

QTransform translated(const QTransform& transform, QPointF by) {
    return transform * QTransform::fromTranslate(by.x(), by.y());
}

} // namespace

TextPainter::TextPainter(TextLineCache& lines, QImage& target, const Viewport& viewport,
                         const Defaults& defaults, const Settings& settings)
    : lines_(lines), target_(target), viewport_(viewport), defaults_(defaults),
      settings_(settings) {}

QColor TextPainter::colorOf(const TextLine::Part& part) const {
    const auto& color = part.attributes.foregroundColor;
    return color ? qColor(*color) : defaults_.color;
}

std::optional<Shadow> TextPainter::shadowOf(const TextAttributes& attributes) const {
    const std::optional<Shadow>& shadow = attributes.shadow ? attributes.shadow : settings_.shadow;
    const bool isVisible = shadow && isFinite(shadow->offset) &&
                           std::isfinite(shadow->blurRadius) && shadow->color.alpha > 0;
    return isVisible ? shadow : std::nullopt;
}

bool TextPainter::hasShadow(const AttributedString& text) const {
    return std::any_of(text.runs().begin(), text.runs().end(),
                       [&](const auto& run) { return shadowOf(run.attributes).has_value(); });
}

Size TextPainter::sizeOf(const AttributedString& text) const {
    return lines_.line(text, defaults_.font, FontSmoothing::Greyscale)->size();
}

/// Maps the coordinates of a line whose box has its lower left corner at @p point.
QTransform TextPainter::lineToPixels(Point point, Size size) const {
    if (!viewport_.keepsRects())
        return QTransform(1, 0, 0, -1, point.x, point.y + size.height) * viewport_.toPixels();
    const QPointF topLeft = viewport_.toPixels(Rect{point, size}).topLeft();
    const QSizeF unit = viewport_.pixelsPerUnit();
    return translated(QTransform::fromScale(unit.width(), unit.height()), topLeft);
}

void TextPainter::draw(const AttributedString& text, Point point) {
    if (target_.isNull() || settings_.mode == TextDrawingMode::Invisible || !isFinite(point))
        return;
    const bool direct = isSourceOver(settings_.operation);
    const bool shadowed = hasShadow(text);
    const bool subpixel = settings_.smoothing && direct && !shadowed && viewport_.keepsRects();
    const auto line = lines_.line(text, defaults_.font,
                                  subpixel ? FontSmoothing::Subpixel : FontSmoothing::Greyscale);
    const QTransform toPixels = lineToPixels(point, line->size());
    const bool plain = direct && settings_.mode == TextDrawingMode::Fill;
    const Parts parts = plain && !shadowed ? Parts() : line->parts();
    drawShadows(parts, toPixels);
    if (plain)
        fill(*line, toPixels);
    else if (direct)
        drawDirectly(parts, toPixels);
    else
        drawThroughLayer(parts, toPixels);
}

AttributedString TextPainter::fitted(const AttributedString& text, double width) const {
    return truncatedToWidth(text, width,
                            [&](const AttributedString& part) { return sizeOf(part); });
}

void TextPainter::drawInRect(const AttributedString& text, const Rect& rect) {
    const QRect area = isDrawable(rect)
                           ? (viewport_.toPixels(rect) & QRectF(target_.rect())).toAlignedRect()
                           : QRect();
    if (area.isEmpty())
        return;
    // This image shares the target's pixels. It clips what is drawn to the area.
    QImage clipped(target_.scanLine(area.top()) + 4 * static_cast<std::ptrdiff_t>(area.left()),
                   area.width(), area.height(), target_.bytesPerLine(), target_.format());
    const Viewport inside = viewport_.movedTo(area.topLeft());
    TextPainter(lines_, clipped, inside, defaults_, settings_).drawAtTopOfRect(text, rect);
}

void TextPainter::drawAtTopOfRect(const AttributedString& text, const Rect& rect) {
    if (!isDrawable(rect) || text.runs().empty())
        return;
    const ParagraphStyle style =
        text.runs().front().attributes.paragraphStyle.value_or(ParagraphStyle());
    const AttributedString shown =
        style.lineBreakMode == LineBreakMode::TruncatingTail ? fitted(text, rect.size.width) : text;
    const Size size = sizeOf(shown);
    const double spare = std::max(0.0, rect.size.width - size.width);
    const double left = spare * kLeftFraction[static_cast<std::size_t>(style.alignment)];
    draw(shown, {rect.origin.x + left, rect.origin.y + rect.size.height - size.height});
}

void TextPainter::drawShadows(const Parts& parts, const QTransform& toPixels) {
    // Neighbours with the same shadow are one shape: their shadow is not darker where they meet.
    for (auto first = parts.begin(); first != parts.end();) {
        const std::optional<Shadow> shadow = shadowOf(first->attributes);
        const auto last = std::find_if(first, parts.end(), [&](const TextLine::Part& part) {
            return shadowOf(part.attributes) != shadow;
        });
        if (shadow)
            drawShadow(*shadow, first, last, toPixels);
        first = last;
    }
}

void TextPainter::drawShadow(const Shadow& shadow, Parts::const_iterator first,
                             Parts::const_iterator last, const QTransform& toPixels) {
    const double scale = viewport_.scale;
    const double deviation = std::clamp(shadow.blurRadius / 2 * scale, 0.0, kLargestDeviation);
    const int radius = blurRadius(deviation);
    const QPointF offset(shadow.offset.width * scale, -shadow.offset.height * scale);
    const QTransform moved = translated(toPixels, offset);
    const QRect area =
        inkArea(first, last, moved, target_.rect().adjusted(-radius, -radius, radius, radius))
            .adjusted(-radius, -radius, radius, radius);
    if ((area & target_.rect()).isEmpty())
        return;
    QImage layer = transparentLayer(area.size());
    drawParts(layer, first, last, {translated(moved, -area.topLeft()), settings_.mode},
              [&](const TextLine::Part& part) { return colorOf(part); });
    Mask mask = alphaMask(layer, area.topLeft());
    blur(mask, deviation);
    compositeMask(target_, mask, qColor(shadow.color), settings_.operation);
}

void TextPainter::fill(const TextLine& line, const QTransform& toPixels) {
    QImage view = unscaledView(target_);
    QPainter painter(&view);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toPixels);
    painter.setPen(defaults_.color);
    line.fill(painter);
}

void TextPainter::drawDirectly(const Parts& parts, const QTransform& toPixels) {
    QImage view = unscaledView(target_);
    drawParts(view, parts.begin(), parts.end(), {toPixels, settings_.mode},
              [&](const TextLine::Part& part) { return colorOf(part); });
}

void TextPainter::drawThroughLayer(const Parts& parts, const QTransform& toPixels) {
    const QRect area = inkArea(parts.begin(), parts.end(), toPixels, target_.rect());
    if (area.isEmpty())
        return;
    const GlyphStyle style{translated(toPixels, -area.topLeft()), settings_.mode};
    QImage glyphs = transparentLayer(area.size());
    drawParts(glyphs, parts.begin(), parts.end(), style,
              [&](const TextLine::Part& part) { return colorOf(part); });
    QImage coverage = transparentLayer(area.size());
    drawParts(coverage, parts.begin(), parts.end(), style,
              [](const TextLine::Part&) { return QColor(Qt::black); });
    compositeGlyphs(target_, glyphs, coverage, area.topLeft(), settings_.operation);
}

} // namespace platform::qt
