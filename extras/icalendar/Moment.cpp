#include "extras/icalendar/Moment.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace extras::icalendar {
namespace {

constexpr std::size_t kMaximumZones = 100;
constexpr std::int64_t kDaySeconds = 24 * 60 * 60;
constexpr std::int64_t kMaximumDuration = 10'000 * 366 * kDaySeconds;

/// The areas with which names in the tz database begin.
constexpr std::array<std::string_view, 10> kAreas{"Africa", "America",  "Antarctica", "Arctic",
                                                  "Asia",   "Atlantic", "Australia",  "Europe",
                                                  "Indian", "Pacific"};

/// Returns the name of the zone at the end of "/VENDOR/…/AREA/CITY".
std::string_view databaseName(std::string_view identifier) {
    if (!identifier.starts_with('/'))
        return identifier;
    std::string_view rest = identifier.substr(1);
    while (!rest.empty()) {
        const std::string_view name = rest;
        if (std::ranges::count(kAreas, takePart(rest, '/')) > 0)
            return name;
    }
    return identifier;
}

/// Parses the @p length digits of @p text from @p position on, which must be there.
std::optional<int> parseDigits(std::string_view text, std::size_t position, std::size_t length) {
    int number = 0;
    for (const char digit : text.substr(position, length)) {
        if (digit < '0' || digit > '9')
            return std::nullopt;
        number = number * 10 + (digit - '0');
    }
    return number;
}

std::optional<std::chrono::sys_days> parseDay(std::string_view text) {
    const auto year = parseDigits(text, 0, 4);
    const auto month = parseDigits(text, 4, 2);
    const auto day = parseDigits(text, 6, 2);
    if (!year || !month || !day)
        return std::nullopt;
    const std::chrono::year_month_day date{std::chrono::year(*year),
                                           std::chrono::month(static_cast<unsigned>(*month)),
                                           std::chrono::day(static_cast<unsigned>(*day))};
    return date.ok() ? std::optional<std::chrono::sys_days>(date) : std::nullopt;
}

std::optional<std::int32_t> parseTime(std::string_view text) {
    const auto hour = parseDigits(text, 0, 2);
    const auto minute = parseDigits(text, 2, 2);
    const auto second = parseDigits(text, 4, 2);
    if (!hour || !minute || !second || *hour > 23 || *minute > 59 || *second > 60)
        return std::nullopt;
    return (*hour * 60 + *minute) * 60 + std::min(*second, 59);
}

/// Returns the seconds in a unit of a duration, or 0 for an unknown one.
std::int64_t unitSeconds(char unit) {
    switch (unit) {
    case 'W':
        return 7 * kDaySeconds;
    case 'D':
        return kDaySeconds;
    case 'H':
        return 60 * 60;
    case 'M':
        return 60;
    case 'S':
        return 1;
    default:
        return 0;
    }
}

} // namespace

std::uint32_t Zones::indexOf(std::string_view identifier) {
    const std::string_view name = databaseName(identifier);
    if (name.empty())
        return kLocal;
    const auto found = std::ranges::find(names_, name);
    if (found == names_.end()) {
        if (names_.size() == kMaximumZones)
            return kLocal;
        names_.emplace_back(name);
        return static_cast<std::uint32_t>(names_.size() - 1);
    }
    return static_cast<std::uint32_t>(found - names_.begin());
}

std::optional<Moment> parseMoment(std::string_view text, std::uint32_t zone) {
    const bool isUTC = text.ends_with('Z');
    if (isUTC)
        text.remove_suffix(1);
    const bool hasTime = text.size() == 15 && text[8] == 'T';
    if (!hasTime && (text.size() != 8 || isUTC))
        return std::nullopt;
    const auto day = parseDay(text);
    if (!day || !hasTime)
        return day ? std::optional(Moment{*day}) : std::nullopt;
    const auto second = parseTime(text.substr(9));
    if (!second)
        return std::nullopt;
    return Moment{*day, *second, isUTC ? Zones::kUTC : zone};
}

std::optional<Moment> parseMoment(const Property& property, Zones& zones) {
    return parseMoment(property.value, zones.indexOf(property.parameter("TZID")));
}

std::optional<std::int64_t> parseDuration(std::string_view text) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    if (!text.starts_with('P'))
        return std::nullopt;
    text.remove_prefix(1);
    std::int64_t seconds = 0;
    while (!text.empty()) {
        if (text.front() == 'T') {
            text.remove_prefix(1);
            continue;
        }
        std::int32_t number = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        const std::int64_t unit = text.empty() ? 0 : unitSeconds(text.front());
        if (error != std::errc() || number < 0 || unit == 0)
            return std::nullopt;
        seconds += number * unit;
        if (seconds > kMaximumDuration)
            return std::nullopt;
        text.remove_prefix(1);
    }
    return seconds;
}

Moment later(const Moment& moment, std::int64_t seconds) {
    const std::int64_t sum = (moment.hasTime() ? moment.second : 0) + seconds;
    Moment result = moment;
    result.day += std::chrono::days(sum / kDaySeconds);
    if (moment.hasTime())
        result.second = static_cast<std::int32_t>(sum % kDaySeconds);
    return result;
}

} // namespace extras::icalendar
