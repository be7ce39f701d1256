#include "platform/qt/Blur.h"

#include <cmath>
#include <cstddef>
#include <vector>

namespace platform::qt {
namespace {

constexpr int kPasses = 3;

/// A box filter over 2 * radius + 1 pixels, plus one pixel with a smaller weight at each end.
struct Box {
    int radius = 0;
    float end = 0;    ///< the weight of the end pixels; the others have 1
    float weight = 1; ///< the factor of the weighted sum
};

/// Returns the box filter that has the variance of the Gaussian after kPasses passes.
Box boxFor(double deviation) {
    const double variance = deviation * deviation / kPasses;
    Box box;
    box.radius = static_cast<int>((std::sqrt(1 + 12 * variance) - 1) / 2);
    const double whole = 2.0 * box.radius + 1;
    const double squares = box.radius * (box.radius + 1.0) * whole / 3;
    const double next = box.radius + 1.0;
    const double end = (variance * whole - squares) / (2 * (next * next - variance));
    box.end = static_cast<float>(end);
    box.weight = static_cast<float>(1 / (whole + 2 * end));
    return box;
}

/// Filters @p count values, @p stride elements apart, in place. @p padded is scratch memory.
void filter(float* values, std::ptrdiff_t count, std::ptrdiff_t stride, const Box& box,
            std::vector<float>& padded) {
    const std::ptrdiff_t margin = box.radius + 1;
    padded.assign(static_cast<std::size_t>(count + 2 * margin), 0);
    for (std::ptrdiff_t i = 0; i < count; ++i)
        padded[static_cast<std::size_t>(i + margin)] = values[i * stride];

    const auto at = [&](std::ptrdiff_t i) { return padded[static_cast<std::size_t>(i + margin)]; };
    // In single precision, the running sum would not return to exactly 0.
    double sum = 0;
    for (std::ptrdiff_t i = -box.radius; i <= box.radius; ++i)
        sum += at(i);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
        const float ends = at(i - margin) + at(i + margin);
        values[i * stride] = (static_cast<float>(sum) + box.end * ends) * box.weight;
        sum += at(i + margin) - at(i - box.radius);
    }
}

} // namespace

int blurRadius(double deviation) {
    return deviation > 0 ? kPasses * (boxFor(deviation).radius + 1) : 0;
}

void blur(Mask& mask, double deviation) {
    if (!(deviation > 0) || mask.area.isEmpty())
        return;
    const Box box = boxFor(deviation);
    const std::ptrdiff_t width = mask.area.width();
    const std::ptrdiff_t height = mask.area.height();
    std::vector<float> padded;
    for (int pass = 0; pass < kPasses; ++pass) {
        for (std::ptrdiff_t y = 0; y < height; ++y)
            filter(mask.coverage.data() + y * width, width, 1, box, padded);
        for (std::ptrdiff_t x = 0; x < width; ++x)
            filter(mask.coverage.data() + x, height, width, box, padded);
    }
}

} // namespace platform::qt
