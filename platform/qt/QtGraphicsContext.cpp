#include "platform/qt/QtGraphicsContext.h"

#include "platform/base/Exception.h"
#include "platform/qt/Compositing.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/Resampling.h"
#include "platform/qt/TextShadow.h"
#include "platform/qt/Truncation.h"

#include <QPainter>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace platform::qt {
namespace {

/// Pixels; a wider blur costs memory and shows nothing.
constexpr double kLargestDeviation = 128;

/// Antialiased edges reach this far beyond an outline.
constexpr int kInkMargin = 2;

/// By TextAlignment: how much of the room that is left lies to the left of the text.
constexpr std::array<double, 3> kShareOfSpareRoom = {0, 1, 0.5};

bool isFinite(Size size) {
    return std::isfinite(size.width) && std::isfinite(size.height);
}

bool isDrawable(const Rect& rect) {
    return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && isFinite(rect.size) &&
           rect.size.width > 0 && rect.size.height > 0;
}

bool drawsOver(CompositingOperation operation) {
    return operation == CompositingOperation::SourceOver ||
           operation == CompositingOperation::Highlight;
}

/// In straight lines: the painter's own are a quarter of a pixel off, which shows in small corners.
template <class ToPixels>
void appendArc(QPainterPath& outline, const CornerArc& arc, ToPixels toPixels) {
    constexpr int kLines = 24;
    for (int i = 1; i <= kLines; ++i) {
        const double t = static_cast<double>(i) / kLines;
        const double u = 1 - t;
        const auto at = [&](double Point::*axis) {
            return u * u * u * arc.start.*axis + 3 * u * u * t * arc.firstControl.*axis +
                   3 * u * t * t * arc.secondControl.*axis + t * t * t * arc.end.*axis;
        };
        outline.lineTo(toPixels(Point{at(&Point::x), at(&Point::y)}));
    }
}

/// Whether a rectangle covers whole pixels only.
bool isWhole(const QRectF& rect) {
    return QRectF(rect.toRect()) == rect;
}

/// The same pixels without the image's device pixel ratio, which a painter would heed.
QImage plainView(QImage& image) {
    return QImage(image.bits(), image.width(), image.height(), image.bytesPerLine(),
                  image.format());
}

QImage transparentLayer(QSize size) {
    QImage layer(size, QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    return layer;
}

void fillOutline(QImage& target, const QPainterPath& outline, const QColor& color) {
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline, color);
}

/// What parts of a text are drawn with.
struct Ink {
    QTransform toPixels;
    TextDrawingMode mode;
};

template <class Iterator, class ColorOf>
void drawParts(QImage& target, Iterator first, Iterator last, const Ink& ink, ColorOf colorOf) {
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(ink.toPixels);
    for (; first != last; ++first)
        drawGlyphs(painter, first->glyphs, colorOf(*first), ink.mode);
}

/// The pixels that parts of a text colour, as far as they lie in @p limits.
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

QTransform shifted(const QTransform& transform, QPointF by) {
    return transform * QTransform::fromTranslate(by.x(), by.y());
}

Mask alphaOf(const QImage& layer, QPoint origin) {
    Mask mask{QRect(origin, layer.size()), {}};
    mask.coverage.reserve(static_cast<std::size_t>(layer.width()) *
                          static_cast<std::size_t>(layer.height()));
    for (int y = 0; y < layer.height(); ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(layer.constScanLine(y));
        std::transform(line, line + layer.width(), std::back_inserter(mask.coverage),
                       [](QRgb pixel) { return static_cast<float>(qAlpha(pixel)) / 255; });
    }
    return mask;
}

} // namespace

QtGraphicsContext::QtGraphicsContext(TextLines& lines, QImage& target, QSizeF points, double scale,
                                     QColor defaultTextColor, const QFont& defaultFont)
    : lines_(lines), target_(target), points_(points), scale_(scale),
      defaultTextColor_(defaultTextColor), defaultFont_(defaultFont) {}

QtGraphicsContext::~QtGraphicsContext() = default;

void QtGraphicsContext::restoreGraphicsState() {
    if (saved_.empty())
        return;
    state_ = saved_.back();
    saved_.pop_back();
}

void QtGraphicsContext::setShadow(Size offset, double blurRadius) {
    state_.shadow = Shadow{offset, blurRadius};
}

QRectF QtGraphicsContext::toPixels(const Rect& rect) const {
    const double top = points_.height() - rect.origin.y - rect.size.height;
    return {rect.origin.x * scale_, top * scale_, rect.size.width * scale_,
            rect.size.height * scale_};
}

QPointF QtGraphicsContext::toPixels(Point point) const {
    return {point.x * scale_, (points_.height() - point.y) * scale_};
}

QPainterPath QtGraphicsContext::outlineOf(const BezierPath& path) const {
    QPainterPath outline;
    outline.setFillRule(Qt::WindingFill);
    Point current;
    for (const BezierPath::Element& element : path.elements()) {
        std::optional<CornerArc> arc;
        switch (element.step) {
        case BezierPath::Step::MoveTo:
            outline.moveTo(toPixels(element.point));
            break;
        case BezierPath::Step::Close:
            outline.closeSubpath();
            continue;
        case BezierPath::Step::ArcFromPoint:
            arc = cornerArc(current, element.point, element.toPoint, element.radius);
            [[fallthrough]];
        case BezierPath::Step::LineTo:
            outline.lineTo(toPixels(arc ? arc->start : element.point));
        }
        if (arc)
            appendArc(outline, *arc, [this](Point point) { return toPixels(point); });
        current = arc ? arc->end : element.point;
    }
    return outline;
}

QColor QtGraphicsContext::colorOf(const TextLine::Part& part) const {
    const auto& color = part.attributes.foregroundColor;
    return color ? toQColor(*color) : defaultTextColor_;
}

std::optional<Shadow> QtGraphicsContext::shadowOf(const TextAttributes& attributes) const {
    const std::optional<Shadow>& shadow = attributes.shadow ? attributes.shadow : state_.shadow;
    const bool shows = shadow && isFinite(shadow->offset) && std::isfinite(shadow->blurRadius) &&
                       shadow->color.alpha > 0;
    return shows ? shadow : std::nullopt;
}

bool QtGraphicsContext::usesShadow(const AttributedString& text) const {
    return std::any_of(text.runs().begin(), text.runs().end(),
                       [&](const auto& run) { return shadowOf(run.attributes).has_value(); });
}

void QtGraphicsContext::drawText(const AttributedString& text, Point point) {
    if (target_.isNull() || state_.textMode == TextDrawingMode::Invisible ||
        !std::isfinite(point.x) || !std::isfinite(point.y))
        return;
    const bool direct = drawsOver(state_.operation);
    const bool fringes = state_.smoothing && direct && !usesShadow(text);
    const auto line = lines_.line(text, defaultFont_,
                                  fringes ? FontSmoothing::Subpixel : FontSmoothing::Greyscale);
    const QPointF topLeft = toPixels({point, line->size()}).topLeft();
    const QTransform toPixels = shifted(QTransform::fromScale(scale_, scale_), topLeft);
    const bool plain = direct && state_.textMode == TextDrawingMode::Fill;
    const Parts parts = plain && !usesShadow(text) ? Parts() : line->parts();
    drawShadows(parts, toPixels);
    if (plain)
        fill(*line, toPixels);
    else if (direct)
        drawOver(parts, toPixels);
    else
        drawThroughLayer(parts, toPixels);
}

void QtGraphicsContext::drawTextInRect(const AttributedString& text, const Rect& rect) {
    const QRect area =
        isDrawable(rect) ? (toPixels(rect) & QRectF(target_.rect())).toAlignedRect() : QRect();
    if (area.isEmpty() || text.runs().empty())
        return;
    const ParagraphStyle style =
        text.runs().front().attributes.paragraphStyle.value_or(ParagraphStyle());
    const auto measure = [&](const AttributedString& part) {
        return lines_.line(part, defaultFont_, FontSmoothing::Greyscale)->size();
    };
    const bool shortens = style.lineBreakMode == LineBreakMode::TruncatingTail;
    const AttributedString fitting =
        shortens ? truncatedToWidth(text, rect.size.width, measure) : text;
    const Size size = measure(fitting);
    const double spare = std::max(0.0, rect.size.width - size.width);
    const double left = spare * kShareOfSpareRoom[static_cast<std::size_t>(style.alignment)];

    // An image that ends where the rectangle does lets nothing out.
    QImage part(target_.scanLine(area.top()) + 4 * static_cast<std::ptrdiff_t>(area.left()),
                area.width(), area.height(), target_.bytesPerLine(), target_.format());
    const QSizeF points(area.width() / scale_, points_.height() - area.top() / scale_);
    QtGraphicsContext inside(lines_, part, points, scale_, defaultTextColor_, defaultFont_);
    inside.state_ = state_;
    inside.drawText(fitting, {rect.origin.x + left - area.left() / scale_,
                              rect.origin.y + rect.size.height - size.height});
}

void QtGraphicsContext::drawShadows(const Parts& parts, const QTransform& toPixels) {
    // Neighbours with the same shadow throw it together: where theirs meet it is no darker.
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

void QtGraphicsContext::drawShadow(const Shadow& shadow, Parts::const_iterator first,
                                   Parts::const_iterator last, const QTransform& toPixels) {
    const double deviation = std::clamp(shadow.blurRadius / 2 * scale_, 0.0, kLargestDeviation);
    const int reach = blurReach(deviation);
    const QPointF offset(shadow.offset.width * scale_, -shadow.offset.height * scale_);
    const QTransform moved = shifted(toPixels, offset);
    const QRect area =
        inkArea(first, last, moved, target_.rect().adjusted(-reach, -reach, reach, reach))
            .adjusted(-reach, -reach, reach, reach);
    if ((area & target_.rect()).isEmpty())
        return;
    QImage layer = transparentLayer(area.size());
    drawParts(layer, first, last, {shifted(moved, -area.topLeft()), state_.textMode},
              [&](const TextLine::Part& part) { return colorOf(part); });
    Mask mask = alphaOf(layer, area.topLeft());
    blur(mask, deviation);
    compositeMask(target_, mask, toQColor(shadow.color), state_.operation);
}

void QtGraphicsContext::fill(const TextLine& line, const QTransform& toPixels) {
    QImage view = plainView(target_);
    QPainter painter(&view);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setTransform(toPixels);
    painter.setPen(defaultTextColor_);
    line.fill(painter);
}

void QtGraphicsContext::drawOver(const Parts& parts, const QTransform& toPixels) {
    QImage view = plainView(target_);
    drawParts(view, parts.begin(), parts.end(), {toPixels, state_.textMode},
              [&](const TextLine::Part& part) { return colorOf(part); });
}

void QtGraphicsContext::drawThroughLayer(const Parts& parts, const QTransform& toPixels) {
    const QRect area = inkArea(parts.begin(), parts.end(), toPixels, target_.rect());
    if (area.isEmpty())
        return;
    const Ink ink{shifted(toPixels, -area.topLeft()), state_.textMode};
    QImage glyphs = transparentLayer(area.size());
    drawParts(glyphs, parts.begin(), parts.end(), ink,
              [&](const TextLine::Part& part) { return colorOf(part); });
    QImage coverage = transparentLayer(area.size());
    drawParts(coverage, parts.begin(), parts.end(), ink,
              [](const TextLine::Part&) { return QColor(Qt::black); });
    compositeGlyphs(target_, glyphs, coverage, area.topLeft(), state_.operation);
}

void QtGraphicsContext::drawImage(const Image& image, const Rect& destination, const Rect& source,
                                  CompositingOperation operation, double fraction) {
    const auto* const picture = dynamic_cast<const QtImage*>(&image);
    if (!picture)
        throw Exception(kInvalidArgumentException, "the image was not made by this backend");
    if (!isDrawable(destination) || !isDrawable(source))
        return;
    const double stretchX = destination.size.width / source.size.width;
    const double stretchY = destination.size.height / source.size.height;
    const QImage& pixels = picture->pixelsForScale(scale_ * std::max(stretchX, stretchY));
    if (pixels.isNull())
        return;

    // From here on y points downwards, and the source counts in the pixels of its representation.
    const Size size = picture->size();
    const Size extent = picture->extent();
    const QTransform toSourcePixels =
        QTransform::fromScale(pixels.width() / extent.width, pixels.height() / extent.height);
    const QRectF whole(source.origin.x, extent.height - source.origin.y - source.size.height,
                       source.size.width, source.size.height);
    const QRectF part = whole & QRectF(0, extent.height - size.height, size.width, size.height);
    const QRectF target = toPixels(destination);
    const QRectF shape(target.left() + (part.left() - whole.left()) * stretchX * scale_,
                       target.top() + (part.top() - whole.top()) * stretchY * scale_,
                       part.width() * stretchX * scale_, part.height() * stretchY * scale_);
    const QRectF visible = shape & QRectF(target_.rect());
    if (part.isEmpty() || visible.isEmpty())
        return;
    const QRectF from = toSourcePixels.mapRect(part);
    if (fraction == 1 && drawsOver(operation) && isWhole(from) && isWhole(shape) &&
        from.size() == shape.size()) {
        QImage view = plainView(target_);
        QPainter(&view).drawImage(shape.topLeft(), pixels, from);
        return;
    }
    const QRect area = visible.toAlignedRect();
    const QImage layer = resampled(pixels, from, shape, area);
    compositeImage(target_, shape, layer, area.topLeft(),
                   fraction > 0 ? std::min(fraction, 1.0) : 0, operation);
}

void QtGraphicsContext::fillRect(const Rect& rect, const Color& color,
                                 CompositingOperation operation) {
    if (isDrawable(rect) && color.space != ColorSpace::Pattern)
        compositeRect(target_, toPixels(rect), toQColor(color), operation);
}

void QtGraphicsContext::fillPath(const BezierPath& path, const Color& color,
                                 CompositingOperation operation) {
    const QPainterPath outline = outlineOf(path);
    const QRect area = (outline.controlPointRect() & QRectF(target_.rect())).toAlignedRect();
    if (area.isEmpty() || color.space == ColorSpace::Pattern)
        return;
    if (drawsOver(operation)) {
        QImage view = plainView(target_);
        fillOutline(view, outline, toQColor(color));
        return;
    }
    QImage layer = transparentLayer(area.size());
    fillOutline(layer, outline.translated(-area.topLeft()), Qt::black);
    compositeMask(target_, alphaOf(layer, area.topLeft()), toQColor(color), operation);
}

} // namespace platform::qt
