#include "platform/qt/PanelPainting.h"

#include "platform/qt/Colors.h"
#include "platform/qt/QtImage.h"
#include "platform/values/TextAttributes.h"

#include <QPainter>
#include <QPainterPath>

#include <cmath>

namespace platform::qt {
namespace {

constexpr int kIndicatorAlpha = 130;

} // namespace

void paintPanelShadow(QPainter& painter, const QRect& frame, const PanelShadow& shadow) {
    const auto [width, radius, opacity] = shadow;
    painter.save();
    QPainterPath outside;
    outside.addRect(frame.adjusted(-width, -width, width, width));
    outside.addRoundedRect(frame, radius, radius);
    painter.setClipPath(outside);
    painter.setBrush(Qt::NoBrush);
    for (int ring = 0; ring < width; ++ring) {
        const double distance = ring + 0.5;
        const double remaining = 1 - distance / width;
        painter.setPen(QPen(QColor::fromRgbF(0, 0, 0, float(opacity * remaining * remaining)), 1));
        painter.drawRoundedRect(QRectF(frame).adjusted(-distance, -distance, distance, distance),
                                radius + distance, radius + distance);
    }
    painter.restore();
}

void paintPanelBackground(QPainter& painter, const QRect& frame, const Color& color,
                          double devicePixelRatio) {
    if (color.space != ColorSpace::Pattern) {
        painter.fillRect(frame, qColor(color));
        return;
    }
    const auto* const picture = dynamic_cast<const QtImage*>(color.pattern.get());
    if (!picture || picture->extent().width <= 0 || picture->extent().height <= 0)
        return;
    const QImage& pixels = picture->pixelsForScale(devicePixelRatio);
    const QSizeF tile(picture->extent().width, picture->extent().height);
    painter.save();
    painter.setClipRect(frame);
    for (double bottom = frame.bottom() + 1; bottom > frame.top(); bottom -= tile.height())
        for (double left = frame.left(); left <= frame.right(); left += tile.width())
            painter.drawImage(QRectF({left, bottom - tile.height()}, tile), pixels);
    painter.restore();
}

void paintPanelTitle(QPainter& painter, const QRect& frame, int height, const QString& title,
                     const QColor& color) {
    // As far from the ends as the title of a HUD panel.
    const QRect area(frame.left() + height, frame.top(), frame.width() - 2 * height, height);
    painter.save();
    QFont font = painter.font();
    font.setPixelSize(static_cast<int>(systemFontSize(ControlSize::Small)));
    painter.setFont(font);
    painter.setPen(color);
    painter.drawText(area, Qt::AlignCenter | Qt::TextSingleLine,
                     painter.fontMetrics().elidedText(title, Qt::ElideRight, area.width()));
    painter.restore();
}

void paintResizeIndicator(QPainter& painter, const QRect& frame, QColor color) {
    const QPointF corner(frame.right() - 1.5, frame.bottom() - 1.5);
    color.setAlpha(kIndicatorAlpha);
    painter.setPen(QPen(color, 1));
    for (const int length : {4, 8, 12})
        painter.drawLine(corner - QPointF(length, 0), corner - QPointF(0, length));
}

void paintPanelImage(QPainter& painter, const QtImage& image, QRectF place,
                     const QColor& foreground) {
    const double scale = painter.device()->devicePixelRatioF();
    const QImage pixels = image.pixelsForScale(scale, foreground);
    if (pixels.isNull())
        return;
    place.moveTopLeft(
        {std::round(place.left() * scale) / scale, std::round(place.top() * scale) / scale});
    // Pixels may extend beyond the image at the top and at the right.
    const double density = pixels.width() / image.extent().width;
    const QSizeF shown(image.size().width * density, image.size().height * density);
    painter.drawImage(place, pixels, QRectF({0, pixels.height() - shown.height()}, shown));
}

} // namespace platform::qt
