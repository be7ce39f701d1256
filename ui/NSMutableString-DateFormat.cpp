#include "ui/NSMutableString-DateFormat.h"

#include "platform/Log.h"
#include "platform/Operation.h"

#include <algorithm>
#include <optional>
#include <utility>
#include <vector>

namespace {

constexpr std::size_t kMaximumInserted = 16 << 20;

/// Returns whether inserting @p value can create more placeholders than it replaces: one with the
/// "%" before it and one with the letter after it.
bool canMultiply(std::string_view value, std::string_view placeholder) {
    return value.starts_with(placeholder.back()) && value.ends_with(placeholder.front());
}

/// Returns @p format with every placeholder replaced, or std::nullopt if that would not end.
std::optional<std::string> replaceAll(std::string_view format, std::string_view placeholder,
                                      std::string_view value) {
    if (value.find(placeholder) != std::string_view::npos)
        return std::nullopt;
    const bool limited = canMultiply(value, placeholder);
    std::size_t inserted = 0;
    // A placeholder is replaced once the end of the result completes it, so it is always the
    // leftmost one. A replacement is read before the text that follows it.
    std::string result;
    result.reserve(format.size());
    std::vector<std::string_view> unread{format};
    while (!unread.empty()) {
        std::string_view& text = unread.back();
        if (text.empty()) {
            unread.pop_back();
            continue;
        }
        const std::size_t length = std::min(text.find(placeholder.back()), text.size() - 1) + 1;
        result += text.substr(0, length);
        text.remove_prefix(length);
        if (!result.ends_with(placeholder))
            continue;
        result.resize(result.size() - placeholder.size());
        unread.push_back(value);
        inserted += value.size();
        if (limited && inserted > kMaximumInserted)
            return std::nullopt;
    }
    return result;
}

std::string& fill(std::string& format, std::string_view placeholder, std::string_view value) {
    platform::guardedOperation([&] {
        if (auto filled = replaceAll(format, placeholder, value))
            format = *std::move(filled);
        else
            platform::logLine("value \"%@\" would replace %@ without end", value, placeholder);
    });
    return format;
}

} // namespace

namespace HalvexDateFormat {

std::string& fixWeekNum(std::string& format, std::string_view week) {
    return fill(format, "%W", week);
}

std::string& fixTimeZone(std::string& format, std::string_view tzAbr) {
    return fill(format, "%Z", tzAbr);
}

} // namespace HalvexDateFormat
