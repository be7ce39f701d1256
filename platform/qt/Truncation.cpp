#include "platform/qt/Truncation.h"

#include <QString>
#include <QTextBoundaryFinder>

#include <algorithm>
#include <cstddef>
#include <string>
#include <vector>

namespace platform::qt {
namespace {

constexpr const char* kEllipsis = "\u2026";

/// Room for the differences between a width and the same one added up of parts.
constexpr double kTolerance = 1e-3;

/// A character is no narrower than this on the average; a line of more is not looked at.
constexpr double kNarrowestPoints = 1.0 / 8;
constexpr std::size_t kMostBytesPerCharacter = 32;

/// The bytes after which the text can be cut, in rising order, the start included.
std::vector<std::size_t> boundaries(const std::string& text) {
    const QString characters = QString::fromStdString(text);
    QTextBoundaryFinder finder(QTextBoundaryFinder::Grapheme, characters);
    std::vector<std::size_t> result{0};
    qsizetype before = 0;
    for (qsizetype at = finder.toNextBoundary(); at >= 0; at = finder.toNextBoundary()) {
        const auto bytes = characters.mid(before, at - before).toUtf8().size();
        result.push_back(std::min(text.size(), result.back() + static_cast<std::size_t>(bytes)));
        before = at;
    }
    return result;
}

/// The text up to a byte, and the ellipsis in the attributes of what stands before it.
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
    const double mostBytes = width / kNarrowestPoints * kMostBytesPerCharacter;
    const bool hopeless = static_cast<double>(text.length()) > mostBytes;
    if (!hopeless && fits(text))
        return text;
    const auto looked = hopeless ? static_cast<std::size_t>(mostBytes) : text.length();
    const std::vector<std::size_t> cuts = boundaries(text.string().substr(0, looked));
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
