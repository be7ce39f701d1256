#pragma once

#include "platform/Graphics.h"
#include "platform/qt/Pixel.h"

#include <algorithm>
#include <array>
#include <cstddef>

namespace platform::qt {

/// The factor by which a pixel is multiplied before source and destination are added. It depends on
/// the alpha of the other pixel.
enum class BlendFactor { Zero, One, Alpha, OneMinusAlpha };

struct BlendFactors {
    BlendFactor source;      ///< depends on the destination's alpha
    BlendFactor destination; ///< depends on the source's alpha
};

/// Indexed by operation number. PlusDarker has its own formula, so its row is unused.
inline constexpr std::array<BlendFactors, 14> kBlendFactors = {{
    {BlendFactor::Zero, BlendFactor::Zero},                   // Clear
    {BlendFactor::One, BlendFactor::Zero},                    // Copy
    {BlendFactor::One, BlendFactor::OneMinusAlpha},           // SourceOver
    {BlendFactor::Alpha, BlendFactor::Zero},                  // SourceIn
    {BlendFactor::OneMinusAlpha, BlendFactor::Zero},          // SourceOut
    {BlendFactor::Alpha, BlendFactor::OneMinusAlpha},         // SourceAtop
    {BlendFactor::OneMinusAlpha, BlendFactor::One},           // DestinationOver
    {BlendFactor::Zero, BlendFactor::Alpha},                  // DestinationIn
    {BlendFactor::Zero, BlendFactor::OneMinusAlpha},          // DestinationOut
    {BlendFactor::OneMinusAlpha, BlendFactor::Alpha},         // DestinationAtop
    {BlendFactor::OneMinusAlpha, BlendFactor::OneMinusAlpha}, // XOR
    {BlendFactor::Zero, BlendFactor::Zero},                   // PlusDarker
    {BlendFactor::One, BlendFactor::OneMinusAlpha},           // Highlight
    {BlendFactor::One, BlendFactor::One},                     // PlusLighter
}};

/// Whether @p operation has one of the numbers 0 to 13.
inline bool isKnown(CompositingOperation operation) {
    const int number = static_cast<int>(operation);
    return number >= 0 && number < static_cast<int>(kBlendFactors.size());
}

/// @p operation must be known.
inline BlendFactors blendFactors(CompositingOperation operation) {
    return kBlendFactors[static_cast<std::size_t>(operation)];
}

inline float value(BlendFactor factor, float alpha) {
    switch (factor) {
    case BlendFactor::Zero:
        return 0;
    case BlendFactor::One:
        return 1;
    case BlendFactor::Alpha:
        return alpha;
    case BlendFactor::OneMinusAlpha:
        return 1 - alpha;
    }
    return 0;
}

/// Composites pixels by the formula of PlusDarker. Components are 0 to 1.
inline Pixel plusDarker(const Pixel& source, const Pixel& destination) {
    const float alpha = std::min(1.0F, source.alpha + destination.alpha);
    Pixel result = componentwise(source, destination, [&](float s, float d) {
        return std::max(0.0F, alpha - ((source.alpha - s) + (destination.alpha - d)));
    });
    result.alpha = alpha;
    return result;
}

/// Composites pixels by any known operation. Components are 0 to 1.
inline Pixel composited(const Pixel& source, const Pixel& destination,
                        CompositingOperation operation) {
    if (operation == CompositingOperation::PlusDarker)
        return plusDarker(source, destination);
    const BlendFactors factors = blendFactors(operation);
    const float sourceFactor = value(factors.source, destination.alpha);
    const float destinationFactor = value(factors.destination, source.alpha);
    return componentwise(source, destination, [&](float s, float d) {
        return std::min(1.0F, s * sourceFactor + d * destinationFactor);
    });
}

} // namespace platform::qt
