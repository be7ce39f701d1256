#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Pixel.h"

#include <array>
#include <cstdint>

namespace platform::qt {

/// Composites one colour onto rows of pixels that it covers completely, in fixed-point arithmetic.
///
/// For a constant source, each component of the result is the old component times a constant, plus
/// a linear function of the pixel's alpha. A result differs from the correctly rounded one by at
/// most 1, and only if the exact value is within 1/50 of the midpoint between two integers.
class SolidFill {
  public:
    /// PlusDarker and PlusLighter are not supported: they clamp sums.
    static bool supports(CompositingOperation operation);

    /// @p source has components of 0 to 1; @p operation must be known and supported.
    SolidFill(const Pixel& source, CompositingOperation operation);

    void fill(QRgb* pixels, int count) const;

  private:
    QRgb filled(QRgb pixel) const;
    /// Fills pixels in groups of four if the processor has the instructions. Returns the number
    /// of pixels filled.
    int fillFours(QRgb* pixels, int count) const;

    // Indexed by component in the order of a packed pixel: blue, green, red, alpha.
    std::array<std::int32_t, 4> base_{};
    std::array<std::int16_t, 4> alphaFactor_{};
    std::int16_t oldFactor_ = 0;
};

} // namespace platform::qt
