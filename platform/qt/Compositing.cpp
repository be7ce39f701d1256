#include "platform/qt/Compositing.h"

#include <QRegion>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace platform::qt {
namespace {

/// Premultiplied, components 0 to 1.
struct Pixel {
    float alpha = 0;
    float red = 0;
    float green = 0;
    float blue = 0;
};

/// What a pixel is multiplied by before the two are added: one of these of the other's alpha, or of
/// nothing.
enum class Factor { Zero, One, Alpha, OneMinusAlpha };

struct Factors {
    Factor ofSource;      // of the destination's alpha
    Factor ofDestination; // of the source's alpha
};

/// By operation number. PlusDarker is not of this kind; its row is never used.
constexpr std::array<Factors, 14> kFactors = {{
    {Factor::Zero, Factor::Zero},                   // Clear
    {Factor::One, Factor::Zero},                    // Copy
    {Factor::One, Factor::OneMinusAlpha},           // SourceOver
    {Factor::Alpha, Factor::Zero},                  // SourceIn
    {Factor::OneMinusAlpha, Factor::Zero},          // SourceOut
    {Factor::Alpha, Factor::OneMinusAlpha},         // SourceAtop
    {Factor::OneMinusAlpha, Factor::One},           // DestinationOver
    {Factor::Zero, Factor::Alpha},                  // DestinationIn
    {Factor::Zero, Factor::OneMinusAlpha},          // DestinationOut
    {Factor::OneMinusAlpha, Factor::Alpha},         // DestinationAtop
    {Factor::OneMinusAlpha, Factor::OneMinusAlpha}, // XOR
    {Factor::Zero, Factor::Zero},                   // PlusDarker
    {Factor::One, Factor::OneMinusAlpha},           // Highlight
    {Factor::One, Factor::One},                     // PlusLighter
}};

float value(Factor factor, float alpha) {
    switch (factor) {
    case Factor::Zero:
        return 0;
    case Factor::One:
        return 1;
    case Factor::Alpha:
        return alpha;
    case Factor::OneMinusAlpha:
        return 1 - alpha;
    }
    return 0;
}

/// Applies @p combine to the components of two pixels in pairs, alpha first.
template <class Combine>
Pixel componentwise(const Pixel& one, const Pixel& other, Combine combine) {
    return {combine(one.alpha, other.alpha), combine(one.red, other.red),
            combine(one.green, other.green), combine(one.blue, other.blue)};
}

Pixel plusDarker(const Pixel& source, const Pixel& destination) {
    const float alpha = std::min(1.0F, source.alpha + destination.alpha);
    Pixel result = componentwise(source, destination, [&](float s, float d) {
        return std::max(0.0F, alpha - ((source.alpha - s) + (destination.alpha - d)));
    });
    result.alpha = alpha;
    return result;
}

Pixel composited(const Pixel& source, const Pixel& destination, CompositingOperation operation) {
    if (operation == CompositingOperation::PlusDarker)
        return plusDarker(source, destination);
    const Factors factors = kFactors[static_cast<std::size_t>(operation)];
    const float ofSource = value(factors.ofSource, destination.alpha);
    const float ofDestination = value(factors.ofDestination, source.alpha);
    return componentwise(source, destination, [&](float s, float d) {
        return std::min(1.0F, s * ofSource + d * ofDestination);
    });
}

Pixel times(const Pixel& pixel, float factor) {
    return componentwise(pixel, pixel, [&](float c, float) { return c * factor; });
}

Pixel unpacked(QRgb packed) {
    return times({static_cast<float>(qAlpha(packed)), static_cast<float>(qRed(packed)),
                  static_cast<float>(qGreen(packed)), static_cast<float>(qBlue(packed))},
                 1.0F / 255);
}

QRgb packed(const Pixel& pixel) {
    // Never negative. NOLINTNEXTLINE(bugprone-incorrect-roundings): lround is a call a pixel.
    const auto byte = [](float c) { return static_cast<int>(c * 255 + 0.5F); };
    return qRgba(byte(pixel.red), byte(pixel.green), byte(pixel.blue), byte(pixel.alpha));
}

Pixel premultiplied(const QColor& color) {
    return times({1, static_cast<float>(color.redF()), static_cast<float>(color.greenF()),
                  static_cast<float>(color.blueF())},
                 static_cast<float>(color.alphaF()));
}

bool isKnown(CompositingOperation operation) {
    const int number = static_cast<int>(operation);
    return number >= 0 && number < static_cast<int>(kFactors.size());
}

/// Merges into the target's part of @p area what @p sourceAt(x, y) gives, by as much as
/// @p coverageAt(x, y) says.
template <class SourceAt, class CoverageAt>
void merge(QImage& target, const QRect& area, CompositingOperation operation, SourceAt sourceAt,
           CoverageAt coverageAt) {
    const QRect visible = area & target.rect();
    if (visible.isEmpty() || !isKnown(operation))
        return;
    for (int y = visible.top(); y <= visible.bottom(); ++y) {
        auto* const row = reinterpret_cast<QRgb*>(target.scanLine(y));
        for (int x = visible.left(); x <= visible.right(); ++x) {
            const float coverage = coverageAt(x, y);
            if (coverage <= 0)
                continue;
            const Pixel before = unpacked(row[x]);
            const Pixel after = composited(sourceAt(x, y), before, operation);
            row[x] = packed(componentwise(
                before, after, [&](float b, float a) { return b + (a - b) * coverage; }));
        }
    }
}

/// A solid colour laid over pixels that it covers wholly: each component becomes what it was times
/// one number for all, plus another that is linear in the pixel's alpha. In whole numbers, with
/// kFraction bits behind the point: a result is off by one only when it is within a fiftieth of the
/// middle between two.
class SolidRows {
  public:
    static bool can(CompositingOperation operation) {
        return operation != CompositingOperation::PlusDarker &&
               operation != CompositingOperation::PlusLighter; // sums of more than 1
    }

    SolidRows(const Pixel& source, CompositingOperation operation) {
        const Factors factors = kFactors[static_cast<std::size_t>(operation)];
        const float atNone = value(factors.ofSource, 0);
        const float atFull = value(factors.ofSource, 1);
        kept_ = static_cast<std::int16_t>(fixed(value(factors.ofDestination, source.alpha)));
        const std::array components{source.blue, source.green, source.red, source.alpha};
        for (std::size_t i = 0; i < components.size(); ++i) {
            base_[i] = fixed(255 * components[i] * atNone) + kHalf;
            ofAlpha_[i] = static_cast<std::int16_t>(fixed(components[i] * (atFull - atNone)));
        }
    }

    void fill(QRgb* pixels, int count) const {
        const int filled = fillFours(pixels, count);
        std::for_each(pixels + filled, pixels + count,
                      [this](QRgb& pixel) { pixel = filledOne(pixel); });
    }

  private:
    static constexpr int kFraction = 14;
    static constexpr std::int32_t kHalf = 1 << (kFraction - 1);

    static std::int32_t fixed(float number) {
        return static_cast<std::int32_t>(std::lround(number * (1 << kFraction)));
    }

    QRgb filledOne(QRgb pixel) const {
        const auto alpha = static_cast<std::int32_t>(pixel >> 24);
        QRgb result = 0;
        for (unsigned i = 0; i < base_.size(); ++i) {
            const auto component = static_cast<std::int32_t>(pixel >> 8 * i & 0xFF);
            const std::int32_t sum = component * kept_ + alpha * ofAlpha_[i] + base_[i];
            result |= static_cast<QRgb>(std::clamp(sum >> kFraction, 0, 255)) << 8 * i;
        }
        return result;
    }

    /// The same for four pixels at a time, where the processor can; how many were filled.
    int fillFours(QRgb* pixels, int count) const;

    // By component: blue, green, red, alpha, as in a packed pixel.
    std::array<std::int32_t, 4> base_{};
    std::array<std::int16_t, 4> ofAlpha_{};
    std::int16_t kept_ = 0;
};

#ifdef __SSE2__
int SolidRows::fillFours(QRgb* pixels, int count) const {
    const __m128i zero = _mm_setzero_si128();
    const __m128i base = _mm_loadu_si128(reinterpret_cast<const __m128i*>(base_.data()));
    const __m128i factors = _mm_setr_epi16(kept_, ofAlpha_[0], kept_, ofAlpha_[1], kept_,
                                           ofAlpha_[2], kept_, ofAlpha_[3]);
    const auto sums = [&](__m128i componentsAndAlpha) {
        return _mm_srai_epi32(_mm_add_epi32(_mm_madd_epi16(componentsAndAlpha, factors), base),
                              kFraction);
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
int SolidRows::fillFours(QRgb*, int) const {
    return 0;
}
#endif

QRgb pixelAt(const QImage& layer, QPoint position) {
    return reinterpret_cast<const QRgb*>(layer.constScanLine(position.y()))[position.x()];
}

/// The part of a rectangle that is in the target, and how much of each pixel it covers.
class RectCoverage {
  public:
    RectCoverage(const QRectF& shape, const QImage& target)
        : shape_(shape & QRectF(target.rect())) {}

    QRect area() const { return shape_.isEmpty() ? QRect() : shape_.toAlignedRect(); }
    /// The pixels that it covers wholly.
    QRect whole() const {
        const QPoint topLeft(static_cast<int>(std::ceil(shape_.left())),
                             static_cast<int>(std::ceil(shape_.top())));
        const QPoint end(static_cast<int>(std::floor(shape_.right())),
                         static_cast<int>(std::floor(shape_.bottom())));
        return QRect(topLeft, end - QPoint(1, 1));
    }
    float operator()(int x, int y) const {
        return static_cast<float>(overlap(x, shape_.left(), shape_.right()) *
                                  overlap(y, shape_.top(), shape_.bottom()));
    }

  private:
    static double overlap(int pixel, double low, double high) {
        return std::max(0.0, std::min(pixel + 1.0, high) - std::max<double>(pixel, low));
    }

    QRectF shape_;
};

} // namespace

float* Mask::row(int y) {
    return coverage.data() +
           static_cast<std::ptrdiff_t>(y - area.top()) * static_cast<std::ptrdiff_t>(area.width());
}

const float* Mask::row(int y) const {
    return const_cast<Mask*>(this)->row(y);
}

void compositeRect(QImage& target, const QRectF& shape, const QColor& color,
                   CompositingOperation operation) {
    const RectCoverage coverage(shape, target);
    const Pixel source = premultiplied(color);
    const QRect area = coverage.area();
    const QRect whole =
        isKnown(operation) && SolidRows::can(operation) ? coverage.whole() : QRect();
    if (!whole.isEmpty()) {
        const SolidRows rows(source, operation);
        for (int y = whole.top(); y <= whole.bottom(); ++y)
            rows.fill(reinterpret_cast<QRgb*>(target.scanLine(y)) + whole.left(), whole.width());
    }
    for (const QRect& part : QRegion(area) - QRegion(whole))
        merge(
            target, part, operation, [&](int, int) { return source; }, coverage);
}

void compositeImage(QImage& target, const QRectF& shape, const QImage& layer, QPoint origin,
                    double fraction, CompositingOperation operation) {
    const RectCoverage coverage(shape, target);
    const auto opacity = static_cast<float>(fraction);
    const auto source = [&](int x, int y) {
        return times(unpacked(pixelAt(layer, QPoint(x, y) - origin)), opacity);
    };
    merge(target, coverage.area() & QRect(origin, layer.size()), operation, source, coverage);
}

void compositeMask(QImage& target, const Mask& mask, const QColor& color,
                   CompositingOperation operation) {
    const Pixel source = premultiplied(color);
    merge(
        target, mask.area, operation, [&](int, int) { return source; },
        [&](int x, int y) { return mask.row(y)[x - mask.area.left()]; });
}

void compositeGlyphs(QImage& target, const QImage& glyphs, const QImage& coverage, QPoint origin,
                     CompositingOperation operation) {
    const auto coverageAt = [&](int x, int y) {
        return static_cast<float>(qAlpha(pixelAt(coverage, QPoint(x, y) - origin))) / 255;
    };
    const auto source = [&](int x, int y) {
        const Pixel pixel = unpacked(pixelAt(glyphs, QPoint(x, y) - origin));
        return componentwise(times(pixel, 1 / coverageAt(x, y)), pixel,
                             [](float c, float) { return std::min(1.0F, c); });
    };
    merge(target, QRect(origin, glyphs.size()), operation, source, coverageAt);
}

} // namespace platform::qt
