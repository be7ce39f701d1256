#pragma once

#include "platform/qt/QtGraphics.h"

#include <QFont>
#include <QImage>

#include <array>
#include <cmath>

namespace test {

/// A transparent image, and the current graphics context for it.
class Canvas {
  public:
    Canvas(double width, double height, double scale = 1, const QColor& textColor = Qt::black)
        : image_(static_cast<int>(std::ceil(width * scale)),
                 static_cast<int>(std::ceil(height * scale)), QImage::Format_ARGB32_Premultiplied) {
        image_.fill(Qt::transparent);
        QFont font(QStringLiteral("DejaVu Sans"));
        font.setPixelSize(14);
        scope_.emplace(graphics_, image_, QSizeF(width, height), scale, textColor, font);
    }

    platform::GraphicsContext* operator->() { return &graphics_.currentContext(); }
    platform::qt::QtGraphics& graphics() { return graphics_; }
    QImage& image() { return image_; }

    /// Returns premultiplied alpha, red, green and blue. Coordinates are from the top left.
    std::array<int, 4> at(int x, int y) const {
        const QRgb pixel = reinterpret_cast<const QRgb*>(image_.constScanLine(y))[x];
        return {qAlpha(pixel), qRed(pixel), qGreen(pixel), qBlue(pixel)};
    }
    int alphaAt(int x, int y) const { return at(x, y)[0]; }

    /// Returns the bounds of the pixels that are not transparent.
    QRect ink() const {
        QRect ink;
        for (int y = 0; y < image_.height(); ++y)
            for (int x = 0; x < image_.width(); ++x)
                if (alphaAt(x, y) > 0)
                    ink |= QRect(x, y, 1, 1);
        return ink;
    }
    /// Returns the sum of the alpha in an area, where an opaque pixel counts as 1.
    double coverage(const QRect& area) const {
        double sum = 0;
        for (int y = area.top(); y <= area.bottom(); ++y)
            for (int x = area.left(); x <= area.right(); ++x)
                sum += alphaAt(x, y) / 255.0;
        return sum;
    }
    double coverage() const { return coverage(image_.rect()); }

  private:
    platform::qt::QtGraphics graphics_;
    QImage image_;
    std::optional<platform::qt::ScopedContext> scope_;
};

} // namespace test
