#include "platform/qt/SolidFill.h"

#include "platform/qt/BlendFormulas.h"

#include <algorithm>
#include <cmath>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace platform::qt {
namespace {

constexpr int kFractionBits = 14;
constexpr std::int32_t kHalf = 1 << (kFractionBits - 1);

std::int32_t fixedPoint(float number) {
    return static_cast<std::int32_t>(std::lround(number * (1 << kFractionBits)));
}

} // namespace

bool SolidFill::supports(CompositingOperation operation) {
    return operation != CompositingOperation::PlusDarker &&
           operation != CompositingOperation::PlusLighter;
}

SolidFill::SolidFill(const Pixel& source, CompositingOperation operation) {
    const BlendFactors factors = blendFactors(operation);
    const float onTransparent = value(factors.source, 0);
    const float onOpaque = value(factors.source, 1);
    oldFactor_ = static_cast<std::int16_t>(fixedPoint(value(factors.destination, source.alpha)));
    const std::array components{source.blue, source.green, source.red, source.alpha};
    for (std::size_t i = 0; i < components.size(); ++i) {
        base_[i] = fixedPoint(255 * components[i] * onTransparent) + kHalf;
        alphaFactor_[i] =
            static_cast<std::int16_t>(fixedPoint(components[i] * (onOpaque - onTransparent)));
    }
}

void SolidFill::fill(QRgb* pixels, int count) const {
    const int done = fillFours(pixels, count);
    std::for_each(pixels + done, pixels + count, [this](QRgb& pixel) { pixel = filled(pixel); });
}

QRgb SolidFill::filled(QRgb pixel) const {
    const auto alpha = static_cast<std::int32_t>(pixel >> 24);
    QRgb result = 0;
    for (unsigned i = 0; i < base_.size(); ++i) {
        const auto component = static_cast<std::int32_t>(pixel >> 8 * i & 0xFF);
        const std::int32_t sum = component * oldFactor_ + alpha * alphaFactor_[i] + base_[i];
        result |= static_cast<QRgb>(std::clamp(sum >> kFractionBits, 0, 255)) << 8 * i;
    }
    return result;
}

#ifdef __SSE2__
int SolidFill::fillFours(QRgb* pixels, int count) const {
    const __m128i zero = _mm_setzero_si128();
    const __m128i base = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base_.data()));
    const __m128i factors =
        _mm_setr_epi16(oldFactor_, alphaFactor_[0], oldFactor_, alphaFactor_[1], oldFactor_,
                       alphaFactor_[2], oldFactor_, alphaFactor_[3]);
    const auto sums = [&](__m128i componentsAndAlpha) {
        return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(componentsAndAlpha, factors), base),
                              kFractionBits);
    };
    const auto filledTwo = [&](__m128i components) {
        constexpr int kLast = _MM_SHUFFLE(3, 3, 3, 3);
        const __m128i alphas = _mm_shufflehi_epi16(_mm_shufflelo_epi16(components, kLast), kLast);
        return _mm_packs_epi32(sums(_mm_unpacklo_epi16(components, alphas)),
                               sums(_mm_unpackhi_epi16(components, alphas)));
    };
    const int fours = count - count % 4;
    for (int i = 0; i < fours; i += 4) {
        auto* const four = reinterpret_cast<__m128i*>(pixels + i);
        const __m128i bytes = _mm_loadu_si128(four);
        _mm_storeu_si128(four, _mm_packus_epi16(filledTwo(_mm_unpacklo_epi8(bytes, zero)),
                                                filledTwo(_mm_unpackhi_epi8(bytes, zero))));
    }
    return fours;
}
#else
int SolidFill::fillFours(QRgb*, int) const {
    return 0;
}
#endif

} // namespace platform::qt
