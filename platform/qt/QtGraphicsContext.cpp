#include "platform/qt/QtGraphicsContext.h"

#include "platform/base/Exception.h"
#include "platform/qt/Colors.h"
#include "platform/qt/Compositing.h"
#include "platform/qt/GradientColors.h"
#include "platform/qt/Layers.h"
#include "platform/qt/PathOutline.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/Resampling.h"
#include "platform/qt/TurnedImage.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <cmath>
#include <utility>

namespace platform::qt {
namespace {

BezierPath rectPath(const Rect& rect) {
    BezierPath path;
    path.appendRect(rect);
    return path;
}

/// Which pixels of an image to draw where. Rectangles are in pixels, with y down.
struct Placement {
    QRectF source;
    QRectF destination;
};

/// Leaves out the part of @p source, in points, that is outside of the image.
Placement place(const QtImage& image, const QImage& pixels, const Rect& source,
                const Rect& destination, const Viewport& viewport) {
    const Size size = image.size();
    const Size extent = image.extent();
    const QRectF whole(source.origin.x, extent.height - source.origin.y - source.size.height,
                       source.size.width, source.size.height);
    const QRectF part = whole & QRectF(0, extent.height - size.height, size.width, size.height);
    const double scaleX = destination.size.width / source.size.width * viewport.scale;
    const double scaleY = destination.size.height / source.size.height * viewport.scale;
    const QPointF topLeft = viewport.toPixels(destination).topLeft();
    const auto toSourcePixels =
        QTransform::fromScale(pixels.width() / extent.width, pixels.height() / extent.height);
    return {toSourcePixels.mapRect(part),
            QRectF(topLeft.x() + (part.left() - whole.left()) * scaleX,
                   topLeft.y() + (part.top() - whole.top()) * scaleY, part.width() * scaleX,
                   part.height() * scaleY)};
}

/// Whether each source pixel is drawn onto exactly one pixel of the destination.
bool isPixelCopy(const Placement& placement) {
    const auto isAligned = [](const QRectF& rect) { return QRectF(rect.toRect()) == rect; };
    return isAligned(placement.source) && isAligned(placement.destination) &&
           placement.source.size() == placement.destination.size();
}

/// The arguments of drawImage.
struct ImageDrawing {
    Rect destination;
    Rect source;
    CompositingOperation operation;
    double opacity;
    QColor textColor; ///< of template images
};

/// Draws a rotated, mirrored or sheared image.
void drawTurned(QImage& target, const QImage& pixels, const Placement& placement,
                const QTransform& turn, const ImageDrawing& drawing) {
    const QRectF& to = placement.destination;
    const QTransform onto(to.width(), 0, 0, to.height(), to.left(), to.top());
    TurnedImage image = turnedImage(pixels, placement.source, onto * turn, target.rect());
    for (Pixel& color : image.colors)
        color = color * static_cast<float>(drawing.opacity);
    compositeColors(target, image.mask, image.colors, drawing.operation);
}

void drawImageInto(QImage& target, const Viewport& viewport, const QtImage& image,
                   const ImageDrawing& drawing) {
    const auto& [destination, source, operation, opacity, textColor] = drawing;
    const QSizeF unit = viewport.pixelsPerUnit();
    const double scale = std::max(destination.size.width / source.size.width * unit.width(),
                                  destination.size.height / source.size.height * unit.height());
    const QImage pixels = image.pixelsForScale(scale, textColor);
    if (pixels.isNull())
        return;
    const Viewport plain{viewport.height, viewport.scale, viewport.left};
    if (!viewport.keepsRects()) {
        const Placement placement = place(image, pixels, source, destination, plain);
        if (!placement.source.isEmpty())
            drawTurned(target, pixels, placement, plain.toPixels().inverted() * viewport.toPixels(),
                       drawing);
        return;
    }
    const Placement placement = place(image, pixels, source, viewport.inPoints(destination), plain);
    const QRectF visible = placement.destination & QRectF(target.rect());
    if (placement.source.isEmpty() || visible.isEmpty())
        return;
    if (opacity == 1 && isSourceOver(operation) && isPixelCopy(placement)) {
        QImage view = unscaledView(target);
        QPainter(&view).drawImage(placement.destination.topLeft(), pixels, placement.source);
        return;
    }
    const QRect area = visible.toAlignedRect();
    const QImage layer = resampled(pixels, placement.source, placement.destination, area);
    compositeImage(target, placement.destination, layer, area.topLeft(), opacity, operation);
}

void fillOutline(QImage& target, const QPainterPath& outline, const QColor& color,
                 CompositingOperation operation) {
    if (!isSourceOver(operation)) {
        compositeMask(target, outlineMask(outline, target.rect()), color, operation);
        return;
    }
    if ((outline.controlPointRect() & QRectF(target.rect())).isEmpty())
        return;
    QImage view = unscaledView(target);
    QPainter painter(&view);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline, color);
}

} // namespace

QtGraphicsContext::QtGraphicsContext(TextLineCache& lines, QImage& target, const Viewport& viewport,
                                     TextPainter::Defaults defaults)
    : lines_(lines), target_(target), defaults_(std::move(defaults)), state_{{}, viewport} {}

QtGraphicsContext::~QtGraphicsContext() = default;

void QtGraphicsContext::restoreGraphicsState() {
    if (saved_.empty())
        return;
    state_ = std::move(saved_.back());
    saved_.pop_back();
}

void QtGraphicsContext::translateBy(double deltaX, double deltaY) {
    if (std::isfinite(deltaX) && std::isfinite(deltaY))
        state_.viewport.transform.translate(deltaX, deltaY);
}

void QtGraphicsContext::rotateByDegrees(double angle) {
    if (std::isfinite(angle))
        state_.viewport.transform.rotate(angle);
}

void QtGraphicsContext::scaleBy(double factorX, double factorY) {
    if (std::isfinite(factorX) && std::isfinite(factorY))
        state_.viewport.transform.scale(factorX, factorY);
}

void QtGraphicsContext::clipToPath(const BezierPath& path) {
    Mask mask = outlineMask(pathOutline(path, state_.viewport), target_.rect());
    if (state_.clip)
        mask = intersected(*state_.clip, mask);
    state_.clip = std::make_shared<const Mask>(std::move(mask));
}

void QtGraphicsContext::setShadow(Size offset, double blurRadius) {
    state_.text.shadow = Shadow{offset, blurRadius};
}

template <class Draw>
void QtGraphicsContext::drawClipped(const Draw& draw) {
    if (!state_.viewport.isUsable())
        return;
    if (!state_.clip) {
        draw(target_, state_.viewport);
        return;
    }
    const QRect& area = state_.clip->area;
    if (area.isEmpty())
        return;
    QImage layer = target_.copy(area);
    draw(layer, state_.viewport.movedTo(area.topLeft()));
    replaceThrough(target_, *state_.clip, layer);
}

void QtGraphicsContext::drawText(const AttributedString& text, Point point) {
    drawClipped([&](QImage& target, const Viewport& viewport) {
        textPainter(target, viewport).draw(text, point);
    });
}

void QtGraphicsContext::drawTextInRect(const AttributedString& text, const Rect& rect) {
    if (state_.viewport.keepsRects()) {
        drawClipped([&](QImage& target, const Viewport& viewport) {
            textPainter(target, viewport).drawInRect(text, rect);
        });
        return;
    }
    const std::shared_ptr<const Mask> clip = state_.clip;
    clipToPath(rectPath(rect));
    drawClipped([&](QImage& target, const Viewport& viewport) {
        textPainter(target, viewport).drawAtTopOfRect(text, rect);
    });
    state_.clip = clip;
}

void QtGraphicsContext::drawImage(const Image& image, const Rect& destination, const Rect& source,
                                  CompositingOperation operation, double fraction) {
    const auto* const picture = dynamic_cast<const QtImage*>(&image);
    if (!picture)
        throw Exception(kInvalidArgumentException, "cannot draw an image of another backend");
    if (!isDrawable(destination) || !isDrawable(source))
        return;
    const double opacity = fraction > 0 ? std::min(fraction, 1.0) : 0;
    drawClipped([&](QImage& target, const Viewport& viewport) {
        drawImageInto(target, viewport, *picture,
                      {destination, source, operation, opacity, defaults_.color});
    });
}

void QtGraphicsContext::fillRect(const Rect& rect, const Color& color,
                                 CompositingOperation operation) {
    if (!isDrawable(rect) || color.space == ColorSpace::Pattern)
        return;
    if (!state_.viewport.keepsRects()) {
        fillPath(rectPath(rect), color, operation);
        return;
    }
    drawClipped([&](QImage& target, const Viewport& viewport) {
        compositeRect(target, viewport.toPixels(rect), qColor(color), operation);
    });
}

void QtGraphicsContext::fillPath(const BezierPath& path, const Color& color,
                                 CompositingOperation operation) {
    if (color.space == ColorSpace::Pattern)
        return;
    drawClipped([&](QImage& target, const Viewport& viewport) {
        fillOutline(target, pathOutline(path, viewport), qColor(color), operation);
    });
}

void QtGraphicsContext::fillPathWithGradient(const BezierPath& path, const Gradient& gradient,
                                             CompositingOperation operation) {
    drawClipped([&](QImage& target, const Viewport& viewport) {
        const auto gradientColors = GradientColors::create(gradient, viewport);
        if (!gradientColors)
            return;
        Mask mask = outlineMask(pathOutline(path, viewport), target.rect());
        const auto colors =
            colorsOf(mask, [&](QPointF pixel) { return gradientColors->at(pixel); });
        compositeColors(target, mask, colors, operation);
    });
}

void QtGraphicsContext::strokePath(const BezierPath& path, const StrokeStyle& style,
                                   const Color& color, CompositingOperation operation) {
    if (color.space == ColorSpace::Pattern)
        return;
    drawClipped([&](QImage& target, const Viewport& viewport) {
        fillOutline(target, strokeOutline(path, style, viewport), qColor(color), operation);
    });
}

} // namespace platform::qt
