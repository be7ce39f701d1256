#include "platform/qt/Truncation.h"

#include "platform/qt/Strings.h"

#include <QTextBoundaryFinder>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace platform::qt {
namespace {

constexpr const char* kEllipsis = "\u2026";

/// A width may differ from the sum of its parts by rounding errors.
constexpr double kTolerance = 1e-3;

/// Assumed bounds. Text beyond what can fit under these assumptions is not measured.
constexpr double kMinimumAverageWidth = 1.0 / 8; // points per character
constexpr std::size_t kMaximumBytesPerCharacter = 32;

/// Returns the byte offsets at which the text can be cut, in ascending order from 0.
std::vector<std::size_t> boundaries(const std::string& text) {
    const QString characters = qString(text);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, characters);
    std::vector<std::size_t> result{0};
    qsizetype previous = 0;
    for (qsizetype at = finder.toNextBoundary(); at >= 0; at = finder.toNextBoundary()) {
        const auto bytes = characters.mid(previous, at - previous).toUtf8().size();
        result.push_back(std::min(text.size(), result.back() + static_cast<std::size_t>(bytes)));
        previous = at;
    }
    return result;
}

/// Returns the first @p length bytes and an ellipsis with the attributes of the text before it.
AttributedString cutAt(const AttributedString& text, std::size_t length) {
    AttributedString result(text.string().substr(0, length) + kEllipsis);
    for (const AttributedString::Run& run : text.runs())
        if (run.location <= length)
            result.setAttributes(run.attributes, run.location, result.length() - run.location);
    return result;
}

} // namespace

AttributedString truncatedToWidth(const AttributedString& text, double width,
                                  const std::function<Size(const AttributedString&)>& measure) {
    const auto fits = [&](const AttributedString& candidate) {
        return measure(candidate).width <= width + kTolerance;
    };
    const double maximumBytes = width / kMinimumAverageWidth * kMaximumBytesPerCharacter;
    const bool isTooLong = static_cast<double>(text.length()) > maximumBytes;
    if (!isTooLong && fits(text))
        return text;
    const auto examined = isTooLong ? static_cast<std::size_t>(maximumBytes) : text.length();
    const std::vector<std::size_t> cuts = boundaries(text.string().substr(0, examined));
    std::size_t fitting = 0;
    std::size_t tooLong = 1;
    if (!fits(cutAt(text, 0)))
        return AttributedString();
    while (tooLong < cuts.size() && fits(cutAt(text, cuts[tooLong]))) {
        fitting = tooLong;
        tooLong *= 2;
    }
    tooLong = std::min(tooLong, cuts.size());
    while (tooLong - fitting > 1) {
        const std::size_t middle = (fitting + tooLong) / 2;
        (fits(cutAt(text, cuts[middle])) ? fitting : tooLong) = middle;
    }
    return cutAt(text, cuts[fitting]);
}

} // namespace platform::qt
