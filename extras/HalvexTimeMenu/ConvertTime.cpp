#include "extras/HalvexTimeMenu/ConvertTime.h"

#include <algorithm>
#include <array>
#include <vector>

namespace {

enum class Half { None, Morning, Afternoon };

constexpr std::array<std::string_view, 3> kMorningWords{"am", "a.m.", "a"};
constexpr std::array<std::string_view, 3> kAfternoonWords{"pm", "p.m.", "p"};

bool isDigit(char character) {
    return character >= '0' && character <= '9';
}

/// Returns @p text in lower case (ASCII), without any kind of space.
std::string compact(std::string_view text) {
    constexpr std::array<std::string_view, 3> kSpaces{"\u00A0", "\u202F", "\u2009"};
    std::string result;
    while (!text.empty()) {
        const auto space = std::ranges::find_if(
            kSpaces, [&](std::string_view candidate) { return text.starts_with(candidate); });
        if (space != kSpaces.end()) {
            text.remove_prefix(space->size());
            continue;
        }
        const char character = text.front();
        if (character != ' ' && character != '\t')
            result += character >= 'A' && character <= 'Z'
                          ? static_cast<char>(character - 'A' + 'a')
                          : character;
        text.remove_prefix(1);
    }
    return result;
}

/// Returns the half of the day that @p word means, or std::nullopt for another word.
std::optional<Half> halfOf(const std::string& word, std::string_view morning,
                           std::string_view afternoon) {
    if (word.empty() || word == "h")
        return Half::None;
    if (std::ranges::count(kMorningWords, word) > 0 || word == compact(morning))
        return Half::Morning;
    if (std::ranges::count(kAfternoonWords, word) > 0 || word == compact(afternoon))
        return Half::Afternoon;
    return std::nullopt;
}

/// Returns the hour and the minute, and possibly the second, in digits. Empty if the text has
/// another form.
std::vector<std::string> parts(std::string_view text) {
    std::vector<std::string> result(1);
    for (const char character : text) {
        if (isDigit(character))
            result.back() += character;
        else if (character == ':' || character == '.' || character == 'h')
            result.emplace_back();
        else
            return {};
    }
    if (result.size() == 1 && (result[0].size() == 3 || result[0].size() == 4)) {
        const std::size_t hourDigits = result[0].size() - 2;
        return {result[0].substr(0, hourDigits), result[0].substr(hourDigits)};
    }
    return result;
}

/// Returns whether the parts have the usual numbers of digits.
bool areComplete(const std::vector<std::string>& parts) {
    if (parts.empty() || parts.size() > 3 || parts[0].empty() || parts[0].size() > 2)
        return false;
    return std::all_of(parts.begin() + 1, parts.end(),
                       [](const std::string& part) { return part.size() == 2; });
}

std::optional<int> hourOfDay(int hour, Half half) {
    if (half == Half::None)
        return hour < 24 ? std::optional(hour) : std::nullopt;
    if (hour < 1 || hour > 12)
        return std::nullopt;
    return hour % 12 + (half == Half::Afternoon ? 12 : 0);
}

} // namespace

std::optional<TimeOfDay> readTimeOfDay(std::string_view text, std::string_view morning,
                                       std::string_view afternoon) {
    const std::string typed = compact(text);
    const std::size_t lastDigit = typed.find_last_of("0123456789");
    if (lastDigit == std::string::npos)
        return std::nullopt;
    const auto half = halfOf(typed.substr(lastDigit + 1), morning, afternoon);
    const auto numbers = parts(std::string_view(typed).substr(0, lastDigit + 1));
    if (!half || !areComplete(numbers))
        return std::nullopt;
    const auto hour = hourOfDay(std::stoi(numbers[0]), *half);
    const int minute = numbers.size() > 1 ? std::stoi(numbers[1]) : 0;
    const int second = numbers.size() > 2 ? std::stoi(numbers[2]) : 0;
    if (!hour || minute > 59 || second > 59)
        return std::nullopt;
    return TimeOfDay{*hour, minute};
}
