#pragma once

#include <memory>
#include <optional>
#include <utility>

namespace platform {

class Image;

/// Where a colour's components count. The calibrated RGB space is the platform's generic one.
enum class ColorSpace { CalibratedRGB, DeviceRGB, CalibratedWhite, DeviceWhite, Pattern };

/// A colour: components 0 to 1, not premultiplied, in calibrated RGB unless it says otherwise.
/// A regular value; two colours of different spaces are different colours.
struct Color {
    double red = 0; ///< a grey has the same in red, green and blue
    double green = 0;
    double blue = 0;
    double alpha = 1;
    ColorSpace space = ColorSpace::CalibratedRGB;
    std::shared_ptr<const Image> pattern{}; ///< of a pattern colour, which has no components

    friend bool operator==(const Color&, const Color&) = default;
};

inline Color calibratedWhite(double white, double alpha = 1) {
    return {white, white, white, alpha, ColorSpace::CalibratedWhite};
}
inline Color deviceRGB(double red, double green, double blue, double alpha = 1) {
    return {red, green, blue, alpha, ColorSpace::DeviceRGB};
}
inline Color clearColor() {
    return calibratedWhite(0, 0);
}
/// An image, repeated from the bottom left.
inline Color colorWithPatternImage(std::shared_ptr<const Image> image) {
    return {0, 0, 0, 1, ColorSpace::Pattern, std::move(image)};
}
/// The same colour in calibrated RGB; nothing for a pattern.
inline std::optional<Color> inCalibratedRGB(const Color& color) {
    if (color.space == ColorSpace::Pattern)
        return std::nullopt;
    return Color{color.red, color.green, color.blue, color.alpha};
}

} // namespace platform
