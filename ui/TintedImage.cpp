#include "ui/TintedImage.h"

#include "platform/Operation.h"

using namespace platform;

namespace {

constexpr double kAlphaOfOpaqueTint = 0.25;

Color translucent(const Color& color) {
    const auto rgb = inCalibratedRGB(color);
    if (!rgb)
        return color;
    return {rgb->red, rgb->green, rgb->blue, kAlphaOfOpaqueTint};
}

} // namespace

namespace HalvexTintedImage {

std::shared_ptr<Image> tintedImageWithColor(const Image& image, const Color& color) {
    return tintedImageWithColor(image, color.alpha == 1.0 ? translucent(color) : color,
                                CompositingOperation::SourceAtop);
}

std::shared_ptr<Image> tintedImageWithColor(const Image& image, const Color& color,
                                            CompositingOperation operation) {
    const Rect bounds{{}, image.size()};
    const auto draw = [&](GraphicsContext& context) {
        context.drawImage(image, bounds, bounds, CompositingOperation::SourceOver, 1.0);
        context.fillRect(bounds, color, operation);
    };
    return guardedOperation([&] { return graphics().imageByDrawing(bounds.size, draw); });
}

} // namespace HalvexTintedImage
