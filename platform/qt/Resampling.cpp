#include "platform/qt/Resampling.h"

#include "platform/qt/Pixel.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <vector>

namespace platform::qt {
namespace {

/// The weight of one source pixel.
struct Tap {
    int position = 0;
    float weight = 0;
};

/// The source pixels that a row (or column) of result pixels is made of. The taps of result pixel i
/// are those from starts[i] to starts[i + 1]; their weights add up to 1.
struct Axis {
    std::vector<Tap> taps;
    std::vector<std::size_t> starts{0};
    int first = 0; ///< the lowest position of a tap
    int last = 0;  ///< the highest
};

/// A range along one axis, in pixels.
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

void add(Pixel& sum, const Pixel& pixel, float weight) {
    sum = componentwise(sum, pixel, [weight](float s, float p) { return s + p * weight; });
}

/// Calls @p visit(index, tap) for each tap of each result pixel.
template <class Visit>
void forEachTap(const Axis& axis, Visit visit) {
    for (std::size_t i = 0; i + 1 < axis.starts.size(); ++i)
        for (std::size_t tap = axis.starts[i]; tap < axis.starts[i + 1]; ++tap)
            visit(i, axis.taps[tap]);
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
    std::vector<Pixel> narrowed(width * static_cast<std::size_t>(down.last - down.first + 1));
    for (int y = down.first; y <= down.last; ++y) {
        const auto* const line = reinterpret_cast<const QRgb*>(source.constScanLine(y));
        Pixel* const row = narrowed.data() + width * static_cast<std::size_t>(y - down.first);
        forEachTap(across, [&](std::size_t x, const Tap& tap) {
            add(row[x], fromBytes(line[tap.position]), tap.weight);
        });
    }

    QImage result(area.size(), QImage::Format_ARGB32_Premultiplied);
    for (int y = 0; y < area.height(); ++y) {
        std::vector<Pixel> sums(width);
        const auto index = static_cast<std::size_t>(y);
        for (std::size_t tap = down.starts[index]; tap < down.starts[index + 1]; ++tap) {
            const auto& [position, weight] = down.taps[tap];
            const Pixel* const row =
                narrowed.data() + width * static_cast<std::size_t>(position - down.first);
            for (std::size_t x = 0; x < width; ++x)
                add(sums[x], row[x], weight);
        }
        std::transform(sums.begin(), sums.end(), reinterpret_cast<QRgb*>(result.scanLine(y)),
                       toBytes);
    }
    return result;
}

} // namespace platform::qt
