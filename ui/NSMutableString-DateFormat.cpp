#include "ui/NSMutableString-DateFormat.h"

#include "platform/Log.h"

#include <optional>
#include <utility>

namespace {

constexpr std::size_t kMostBroughtIn = 16 << 20;

/// Only such a value can make more placeholders than it has replaced.
bool canFeedItself(std::string_view value, char letter) {
    return value.starts_with(letter) && value.ends_with('%');
}

/// @p format without placeholders; nothing when there is no end to them.
std::optional<std::string> filled(std::string_view format, char letter, std::string_view value) {
    const std::string reversed(value.rbegin(), value.rend());
    const bool limited = canFeedItself(value, letter);
    std::size_t broughtIn = 0;
    // What is done never holds a placeholder, so the next one to appear at its end is the leftmost.
    // The rest is kept back to front, for what is brought in goes before it.
    std::string done;
    std::string rest(format.rbegin(), format.rend());
    while (!rest.empty()) {
        const char next = rest.back();
        rest.pop_back();
        if (next != letter || !done.ends_with('%')) {
            done += next;
            continue;
        }
        done.pop_back();
        rest += reversed;
        broughtIn += reversed.size();
        if (limited && broughtIn > kMostBroughtIn)
            return std::nullopt;
    }
    return done;
}

std::string& fix(std::string& format, char letter, std::string_view value) {
    const std::string placeholder{'%', letter};
    std::optional<std::string> result;
    if (value.find(placeholder) == std::string_view::npos)
        result = filled(format, letter, value);
    if (result)
        format = *std::move(result);
    else
        platform::logLine("value \"%@\" would replace %@ without end", value, placeholder);
    return format;
}

} // namespace

namespace HalvexDateFormat {

std::string& fixWeekNum(std::string& format, std::string_view week) {
    return fix(format, 'W', week);
}

std::string& fixTimeZone(std::string& format, std::string_view tzAbr) {
    return fix(format, 'Z', tzAbr);
}

} // namespace HalvexDateFormat
