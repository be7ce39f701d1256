#include "platform/qt/TurnedImage.h"

#include "platform/qt/Resampling.h"

#include <algorithm>
#include <cmath>

namespace platform::qt {
namespace {

/// Returns the number of pixels to draw a side with: as many as it covers, but not more than it
/// has.
int pixelsFor(double covered, double available) {
    return static_cast<int>(std::max(1.0, std::ceil(std::min(covered, available) - 1e-9)));
}

Pixel mixed(const Pixel& one, const Pixel& other, float fraction) {
    return componentwise(one, other, [=](float a, float b) { return a + (b - a) * fraction; });
}

/// Returns the colour, with components of 0 to 255, at a point between the centres of pixels.
Pixel interpolated(const QImage& image, QPointF point) {
    const double x = std::clamp(point.x() - 0.5, 0.0, image.width() - 1.0);
    const double y = std::clamp(point.y() - 0.5, 0.0, image.height() - 1.0);
    const int left = static_cast<int>(x);
    const int top = static_cast<int>(y);
    const auto inRow = [&](int line) {
        const auto* const row = reinterpret_cast<const QRgb*>(image.constScanLine(line));
        return mixed(fromBytes(row[left]), fromBytes(row[std::min(left + 1, image.width() - 1)]),
                     static_cast<float>(x - left));
    };
    return mixed(inRow(top), inRow(std::min(top + 1, image.height() - 1)),
                 static_cast<float>(y - top));
}

} // namespace

TurnedImage turnedImage(const QImage& source, const QRectF& part, const QTransform& toPixels,
                        const QRect& limits) {
    QPainterPath outline;
    outline.addRect(0, 0, 1, 1);
    TurnedImage result{outlineMask(toPixels.map(outline), limits), {}};
    if (result.mask.area.isEmpty())
        return result;
    const QSize size(pixelsFor(std::hypot(toPixels.m11(), toPixels.m12()), part.width()),
                     pixelsFor(std::hypot(toPixels.m21(), toPixels.m22()), part.height()));
    const QImage image = resampled(source, part, QRectF(QPointF(), size), QRect(QPoint(), size));
    const QTransform toImage =
        toPixels.inverted() * QTransform::fromScale(size.width(), size.height());
    result.colors = colorsOf(result.mask, [&](QPointF pixel) {
        return std::optional(interpolated(image, toImage.map(pixel)) * (1.0F / 255));
    });
    return result;
}

} // namespace platform::qt
