#include "ui/TintedImage.h"

using namespace platform;

namespace {

constexpr double kStrengthOfOpaqueColors = 0.25;

Color translucent(const Color& color) {
    const auto rgb = inCalibratedRGB(color);
    if (!rgb)
        return color;
    return {rgb->red, rgb->green, rgb->blue, kStrengthOfOpaqueColors};
}

} // namespace

namespace HalvexTintedImage {

std::shared_ptr<Image> tintedImageWithColor(const Image& image, const Color& color) {
    return tintedImageWithColor(image, color.alpha == 1.0 ? translucent(color) : color,
                                CompositingOperation::SourceAtop);
}

std::shared_ptr<Image> tintedImageWithColor(const Image& image, const Color& color,
                                            CompositingOperation operation) {
    const Rect whole{{}, image.size()};
    return graphics().imageByDrawing(whole.size, [&](GraphicsContext& context) {
        context.drawImage(image, whole, whole, CompositingOperation::SourceOver, 1.0);
        context.fillRect(whole, color, operation);
    });
}

} // namespace HalvexTintedImage
