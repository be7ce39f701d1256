#include "platform/qt/NetworkNames.h"

#include "platform/base/Utf8.h"

#include <algorithm>
#include <utility>

namespace platform::qt {
namespace {

/// Whether a well-formed character is invisible and changes the text around it: a control
/// character, a line separator, or one that sets the direction of writing.
bool isControl(std::string_view character) {
    static constexpr std::pair<std::string_view, std::string_view> kRanges[] = {
        {std::string_view("\0", 1), "\x1F"},
        {"\x7F", "\u009F"},
        {"\u061C", "\u061C"},
        {"\u200E", "\u200F"},
        {"\u2028", "\u202E"},
        {"\u2066", "\u2069"}};
    // UTF-8 sorts like the characters.
    return std::ranges::any_of(kRanges, [&](const auto& range) {
        return range.first <= character && character <= range.second;
    });
}

} // namespace

std::string nameOfSsid(std::string_view ssid) {
    std::string name;
    while (!ssid.empty()) {
        const std::size_t length = utf8SequenceLength(ssid);
        if (length == 0 || isControl(ssid.substr(0, length)))
            name += "\uFFFD";
        else
            name += ssid.substr(0, length);
        ssid.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return name;
}

} // namespace platform::qt
