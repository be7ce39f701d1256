#include "platform/qt/Compositing.h"

#include "platform/qt/BlendFormulas.h"
#include "platform/qt/SolidFill.h"

#include <QRegion>

#include <algorithm>
#include <cmath>

namespace platform::qt {
namespace {

/// Returns components of 0 to 1.
Pixel unpacked(QRgb pixel) {
    return fromBytes(pixel) * (1.0F / 255);
}

/// Composites the colours that @p sourceAt(x, y) returns onto @p area, clipped to the target.
/// @p coverageAt(x, y) returns how much of the pixel is covered.
template <class SourceAt, class CoverageAt>
void merge(QImage& target, const QRect& area, CompositingOperation operation, SourceAt sourceAt,
           CoverageAt coverageAt) {
    const QRect visible = area & target.rect();
    if (visible.isEmpty() || !isKnown(operation))
        return;
    for (int y = visible.top(); y <= visible.bottom(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(target.scanLine(y));
        for (int x = visible.left(); x <= visible.right(); ++x) {
            const float coverage = coverageAt(x, y);
            if (coverage <= 0)
                continue;
            const Pixel before = unpacked(row[x]);
            const Pixel after = composited(sourceAt(x, y), before, operation);
            const Pixel merged = componentwise(
                before, after, [&](float b, float a) { return b + (a - b) * coverage; });
            row[x] = toBytes(merged * 255);
        }
    }
}

QRgb pixelAt(const QImage& layer, QPoint position) {
    return reinterpret_cast<const QRgb*>(layer.constScanLine(position.y()))[position.x()];
}

/// How much of each pixel of a target a rectangle covers.
class RectCoverage {
  public:
    RectCoverage(const QRectF& shape, const QImage& target)
        : shape_(shape & QRectF(target.rect())) {}

    QRect area() const { return shape_.isEmpty() ? QRect() : shape_.toAlignedRect(); }
    /// The pixels that the rectangle covers completely.
    QRect whole() const {
        const QPoint topLeft(static_cast<int>(std::ceil(shape_.left())),
                             static_cast<int>(std::ceil(shape_.top())));
        const QPoint end(static_cast<int>(std::floor(shape_.right())),
                         static_cast<int>(std::floor(shape_.bottom())));
        return QRect(topLeft, end - QPoint(1, 1));
    }
    float operator()(int x, int y) const {
        return static_cast<float>(overlap(x, shape_.left(), shape_.right()) *
                                  overlap(y, shape_.top(), shape_.bottom()));
    }

  private:
    static double overlap(int pixel, double low, double high) {
        return std::max(0.0, std::min(pixel + 1.0, high) - std::max<double>(pixel, low));
    }

    QRectF shape_;
};

} // namespace

bool isSourceOver(CompositingOperation operation) {
    return operation == CompositingOperation::SourceOver ||
           operation == CompositingOperation::Highlight;
}

void compositeRect(QImage& target, const QRectF& shape, const QColor& color,
                   CompositingOperation operation) {
    const RectCoverage coverage(shape, target);
    const Pixel source = premultiplied(color);
    const QRect area = coverage.area();
    const QRect whole =
        isKnown(operation) && SolidFill::supports(operation) ? coverage.whole() : QRect();
    if (!whole.isEmpty()) {
        const SolidFill fill(source, operation);
        for (int y = whole.top(); y <= whole.bottom(); ++y)
            fill.fill(reinterpret_cast<QRgb*>(target.scanLine(y)) + whole.left(), whole.width());
    }
    for (const QRect& part : QRegion(area) - QRegion(whole))
        merge(
            target, part, operation, [&](int, int) { return source; }, coverage);
}

void compositeImage(QImage& target, const QRectF& shape, const QImage& layer, QPoint origin,
                    double fraction, CompositingOperation operation) {
    const RectCoverage coverage(shape, target);
    const auto opacity = static_cast<float>(fraction);
    const auto source = [&](int x, int y) {
        return unpacked(pixelAt(layer, QPoint(x, y) - origin)) * opacity;
    };
    merge(target, coverage.area() & QRect(origin, layer.size()), operation, source, coverage);
}

void compositeMask(QImage& target, const Mask& mask, const QColor& color,
                   CompositingOperation operation) {
    const Pixel source = premultiplied(color);
    merge(
        target, mask.area, operation, [&](int, int) { return source; },
        [&](int x, int y) { return mask.at(x, y); });
}

void compositeColors(QImage& target, const Mask& mask, const std::vector<Pixel>& colors,
                     CompositingOperation operation) {
    const auto sourceAt = [&](int x, int y) { return colors[mask.index(x, y)]; };
    merge(target, mask.area, operation, sourceAt, [&](int x, int y) { return mask.at(x, y); });
}

void replaceThrough(QImage& target, const Mask& mask, const QImage& changed) {
    const auto after = [&](int x, int y) {
        return unpacked(pixelAt(changed, QPoint(x, y) - mask.area.topLeft()));
    };
    merge(target, mask.area, CompositingOperation::Copy, after,
          [&](int x, int y) { return mask.at(x, y); });
}

void compositeGlyphs(QImage& target, const QImage& glyphs, const QImage& coverage, QPoint origin,
                     CompositingOperation operation) {
    const auto coverageAt = [&](int x, int y) {
        return static_cast<float>(qAlpha(pixelAt(coverage, QPoint(x, y) - origin))) / 255;
    };
    const auto source = [&](int x, int y) {
        const Pixel pixel = unpacked(pixelAt(glyphs, QPoint(x, y) - origin));
        return componentwise(pixel * (1 / coverageAt(x, y)), pixel,
                             [](float c, float) { return std::min(1.0F, c); });
    };
    merge(target, QRect(origin, glyphs.size()), operation, source, coverageAt);
}

} // namespace platform::qt
