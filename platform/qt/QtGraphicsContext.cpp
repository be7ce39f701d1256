#include "platform/qt/QtGraphicsContext.h"

#include "platform/base/Exception.h"
#include "platform/qt/Colors.h"
#include "platform/qt/Compositing.h"
#include "platform/qt/Layers.h"
#include "platform/qt/PathOutline.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/Resampling.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>
#include <utility>

namespace platform::qt {
namespace {

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

void fillOutline(QImage& target, const QPainterPath& outline, const QColor& color) {
    QPainter painter(&target);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline, color);
}

} // namespace

QtGraphicsContext::QtGraphicsContext(TextLineCache& lines, QImage& target, const Viewport& viewport,
                                     TextPainter::Defaults defaults)
    : lines_(lines), target_(target), viewport_(viewport), defaults_(std::move(defaults)) {}

QtGraphicsContext::~QtGraphicsContext() = default;

void QtGraphicsContext::restoreGraphicsState() {
    if (saved_.empty())
        return;
    settings_ = saved_.back();
    saved_.pop_back();
}

void QtGraphicsContext::setShadow(Size offset, double blurRadius) {
    settings_.shadow = Shadow{offset, blurRadius};
}

void QtGraphicsContext::drawText(const AttributedString& text, Point point) {
    textPainter().draw(text, point);
}

void QtGraphicsContext::drawTextInRect(const AttributedString& text, const Rect& rect) {
    textPainter().drawInRect(text, rect);
}

void QtGraphicsContext::drawImage(const Image& image, const Rect& destination, const Rect& source,
                                  CompositingOperation operation, double fraction) {
    const auto* const picture = dynamic_cast<const QtImage*>(&image);
    if (!picture)
        throw Exception(kInvalidArgumentException, "cannot draw an image of another backend");
    if (!isDrawable(destination) || !isDrawable(source))
        return;
    const double stretch = std::max(destination.size.width / source.size.width,
                                    destination.size.height / source.size.height);
    const QImage pixels = picture->pixelsForScale(viewport_.scale * stretch, defaults_.color);
    if (pixels.isNull())
        return;
    const Placement placement = place(*picture, pixels, source, destination, viewport_);
    const QRectF visible = placement.destination & QRectF(target_.rect());
    if (placement.source.isEmpty() || visible.isEmpty())
        return;
    if (fraction == 1 && isSourceOver(operation) && isPixelCopy(placement)) {
        QImage view = unscaledView(target_);
        QPainter(&view).drawImage(placement.destination.topLeft(), pixels, placement.source);
        return;
    }
    const QRect area = visible.toAlignedRect();
    const QImage layer = resampled(pixels, placement.source, placement.destination, area);
    compositeImage(target_, placement.destination, layer, area.topLeft(),
                   fraction > 0 ? std::min(fraction, 1.0) : 0, operation);
}

void QtGraphicsContext::fillRect(const Rect& rect, const Color& color,
                                 CompositingOperation operation) {
    if (isDrawable(rect) && color.space != ColorSpace::Pattern)
        compositeRect(target_, viewport_.toPixels(rect), qColor(color), operation);
}

void QtGraphicsContext::fillPath(const BezierPath& path, const Color& color,
                                 CompositingOperation operation) {
    const QPainterPath outline = pathOutline(path, viewport_);
    const QRect area = (outline.controlPointRect() & QRectF(target_.rect())).toAlignedRect();
    if (area.isEmpty() || color.space == ColorSpace::Pattern)
        return;
    if (isSourceOver(operation)) {
        QImage view = unscaledView(target_);
        fillOutline(view, outline, qColor(color));
        return;
    }
    QImage layer = transparentLayer(area.size());
    fillOutline(layer, outline.translated(-area.topLeft()), Qt::black);
    compositeMask(target_, alphaMask(layer, area.topLeft()), qColor(color), operation);
}

} // namespace platform::qt
