#pragma once

#include <QColor>
#include <QRgb>

namespace platform::qt {

/// A premultiplied colour as four floats.
struct Pixel {
    float alpha = 0;
    float red = 0;
    float green = 0;
    float blue = 0;
};

/// Applies @p combine to each pair of components.
template <class Combine>
Pixel componentwise(const Pixel& one, const Pixel& other, Combine combine) {
    return {combine(one.alpha, other.alpha), combine(one.red, other.red),
            combine(one.green, other.green), combine(one.blue, other.blue)};
}

inline Pixel operator*(const Pixel& pixel, float factor) {
    return componentwise(pixel, pixel, [&](float c, float) { return c * factor; });
}

/// Returns components of 0 to 255.
inline Pixel fromBytes(QRgb pixel) {
    return {static_cast<float>(qAlpha(pixel)), static_cast<float>(qRed(pixel)),
            static_cast<float>(qGreen(pixel)), static_cast<float>(qBlue(pixel))};
}

/// Rounds components of 0 to 255 to the nearest integers.
inline QRgb toBytes(const Pixel& pixel) {
    // Never negative. NOLINTNEXTLINE(bugprone-incorrect-roundings): lround is a call per pixel.
    const auto byte = [](float component) { return static_cast<int>(component + 0.5F); };
    return qRgba(byte(pixel.red), byte(pixel.green), byte(pixel.blue), byte(pixel.alpha));
}

/// Returns components of 0 to 1.
inline Pixel premultiplied(const QColor& color) {
    const Pixel opaque{1, static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
                       static_cast<float>(color.blueF())};
    return opaque * static_cast<float>(color.alphaF());
}

} // namespace platform::qt
