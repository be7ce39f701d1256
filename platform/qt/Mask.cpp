#include "platform/qt/Mask.h"

#include "platform/qt/Layers.h"

#include <QPainter>

#include <algorithm>
#include <cstddef>
#include <iterator>

namespace platform::qt {

Mask alphaMask(const QImage& layer, QPoint origin) {
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

Mask outlineMask(const QPainterPath& outline, const QRect& limits) {
    const QRect area = (outline.controlPointRect() & QRectF(limits)).toAlignedRect();
    if (area.isEmpty())
        return {};
    QImage layer = transparentLayer(area.size());
    QPainter painter(&layer);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillPath(outline.translated(-area.topLeft()), Qt::black);
    painter.end();
    return alphaMask(layer, area.topLeft());
}

Mask intersected(const Mask& one, const Mask& other) {
    Mask both{one.area & other.area, {}};
    both.coverage.reserve(static_cast<std::size_t>(both.area.width()) *
                          static_cast<std::size_t>(both.area.height()));
    for (int y = both.area.top(); y <= both.area.bottom(); ++y)
        for (int x = both.area.left(); x <= both.area.right(); ++x)
            both.coverage.push_back(one.at(x, y) * other.at(x, y));
    return both;
}

} // namespace platform::qt
