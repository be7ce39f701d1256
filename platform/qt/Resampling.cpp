#include "platform/qt/Resampling.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

namespace platform::qt {
namespace {

/// By how much one pixel of the source counts.
struct Tap {
    int position = 0;
    float weight = 0;
};

/// What a row (or column) of result pixels is made of: the taps of pixel i are those from starts[i]
/// to starts[i + 1], their weights add up to 1.
struct Axis {
    std::vector<Tap> taps;
    std::vector<std::size_t> starts{0};
    int first = 0; ///< the lowest position that counts
    int last = 0;  ///< and the highest
};

/// A stretch along one axis, in pixels.
struct Span {
    double start = 0;
    double length = 0;
};

Axis makeAxis(Span part, Span destination, int pixels, int areaStart, int areaLength) {
    const double step = part.length / destination.length;
    const double reach = std::max(1.0, step);
    Axis axis;
    axis.first = std::clamp(static_cast<int>(std::floor(part.start)), 0, pixels - 1);
    axis.last = std::clamp(static_cast<int>(std::ceil(part.start + part.length)) - 1, axis.first,
                           pixels - 1);
    for (int i = 0; i < areaLength; ++i) {
        const double center = part.start + (areaStart + i + 0.5 - destination.start) * step;
        const std::size_t start = axis.taps.size();
        double sum = 0;
        const double end = std::floor(center + reach - 0.5);
        for (double j = std::ceil(center - reach - 0.5); j <= end; ++j) {
            const double weight = 1 - std::abs(j + 0.5 - center) / reach;
            if (weight <= 0)
                continue;
            const int position = std::clamp(static_cast<int>(j), axis.first, axis.last);
            axis.taps.push_back({position, static_cast<float>(weight)});
            sum += weight;
        }
        for (std::size_t tap = start; tap < axis.taps.size(); ++tap)
            axis.taps[tap].weight /= static_cast<float>(sum);
        axis.starts.push_back(axis.taps.size());
    }
    return axis;
}

using Components = std::array<float, 4>;

void add(Components& sum, const Components& value, float weight) {
    for (std::size_t i = 0; i < sum.size(); ++i)
        sum[i] += value[i] * weight;
}

Components unpacked(QRgb pixel) {
    return {static_cast<float>(qAlpha(pixel)), static_cast<float>(qRed(pixel)),
            static_cast<float>(qGreen(pixel)), static_cast<float>(qBlue(pixel))};
}

QRgb packed(const Components& c) {
    // Never negative. NOLINTNEXTLINE(bugprone-incorrect-roundings): lround is a call a pixel.
    const auto byte = [](float component) { return static_cast<int>(component + 0.5F); };
    return qRgba(byte(c[1]), byte(c[2]), byte(c[3]), byte(c[0]));
}

/// Calls @p each(index, tap) for all taps of all pixels of an axis.
template <class Each>
void forEachTap(const Axis& axis, Each each) {
    for (std::size_t i = 0; i + 1 < axis.starts.size(); ++i)
        for (std::size_t tap = axis.starts[i]; tap < axis.starts[i + 1]; ++tap)
            each(i, axis.taps[tap]);
}

} // namespace

QImage resampled(const QImage& source, const QRectF& part, const QRectF& destination,
                 const QRect& area) {
    const Axis across =
        makeAxis({part.left(), part.width()}, {destination.left(), destination.width()},
                 source.width(), area.left(), area.width());
    const Axis down =
        makeAxis({part.top(), part.height()}, {destination.top(), destination.height()},
                 source.height(), area.top(), area.height());

    const auto width = static_cast<std::size_t>(area.width());
    std::vector<Components> narrowed(width * static_cast<std::size_t>(down.last - down.first + 1));
    for (int y = down.first; y <= down.last; ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        Components* const row = narrowed.data() + width * static_cast<std::size_t>(y - down.first);
        forEachTap(across, [&](std::size_t x, const Tap& tap) {
            add(row[x], unpacked(line[tap.position]), tap.weight);
        });
    }

    QImage result(area.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < area.height(); ++y) {
        std::vector<Components> sums(width);
        const auto index = static_cast<std::size_t>(y);
        for (std::size_t tap = down.starts[index]; tap < down.starts[index + 1]; ++tap) {
            const auto& [position, weight] = down.taps[tap];
            const Components* const row =
                narrowed.data() + width * static_cast<std::size_t>(position - down.first);
            for (std::size_t x = 0; x < width; ++x)
                add(sums[x], row[x], weight);
        }
        std::transform(sums.begin(), sums.end(), reinterpret_cast<QRgb*>(result.scanLine(y)),
                       packed);
    }
    return result;
}

} // namespace platform::qt
