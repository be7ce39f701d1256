#include "platform/qt/Mask.h"

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

} // namespace platform::qt
