#pragma once

#include <memory>
#include <optional>
#include <utility>

namespace platform {

class Image;

/// The colour space of a colour's components. CalibratedRGB is the platform's generic RGB space.
enum class ColorSpace { CalibratedRGB, DeviceRGB, CalibratedWhite, DeviceWhite, Pattern };

/// A colour with components from 0 to 1, not premultiplied. A regular value. Colours in different
/// spaces are never equal.
struct Color {
    double red = 0; ///< greys have equal red, green and blue components
    double green = 0;
    double blue = 0;
    double alpha = 1;
    ColorSpace space = ColorSpace::CalibratedRGB;
    std::shared_ptr<const Image> pattern{}; ///< for a pattern colour, used instead of components

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
/// Returns a colour that tiles an image from the bottom left.
inline Color colorWithPatternImage(std::shared_ptr<const Image> image) {
    return {0, 0, 0, 1, ColorSpace::Pattern, std::move(image)};
}
/// Converts a colour to calibrated RGB. Returns std::nullopt for a pattern colour.
inline std::optional<Color> inCalibratedRGB(const Color& color) {
    if (color.space == ColorSpace::Pattern)
        return std::nullopt;
    return Color{color.red, color.green, color.blue, color.alpha};
}

} // namespace platform
