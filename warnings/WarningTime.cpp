#include "warnings/WarningTime.h"

#include "platform/values/CivilTime.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>

namespace warnings {
namespace {

using Kind = WarningTime::Kind;
using platform::CivilTime;
using platform::ZoneRules;

constexpr int kMinutesPerHour = 60;
constexpr int kMinutesPerDay = 24 * kMinutesPerHour;
constexpr int kMaximumDelay = 7 * kMinutesPerDay;
constexpr std::int64_t kSecondsPerMinute = 60;
constexpr std::int64_t kSecondsPerHour = 3600;
constexpr std::int64_t kOldestOccurrence = 30 * 24 * kSecondsPerHour;
constexpr std::size_t kMaximumText = 100; // bytes

/// Returns @p text in lower case and without spaces, which no form needs.
std::string compact(std::string_view text) {
    std::string result;
    for (const char c : text)
        if (c != ' ' && c != '\t')
            result += c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    return result;
}

bool skip(std::string_view& text, std::string_view prefix) {
    if (!text.starts_with(prefix))
        return false;
    text.remove_prefix(prefix.size());
    return true;
}

std::optional<int> takeNumber(std::string_view& text) {
    int number = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (error != std::errc() || number < 0)
        return std::nullopt;
    text.remove_prefix(static_cast<std::size_t>(end - text.data()));
    return number;
}

/// Returns the minutes after midnight of "17:30", "5:30pm" and "5pm".
std::optional<int> timeOfDay(std::string_view text) {
    auto hour = takeNumber(text);
    const bool hasMinutes = skip(text, ":") || skip(text, ".");
    const std::size_t size = text.size();
    const auto minute = hasMinutes ? takeNumber(text) : 0;
    if (hasMinutes && size - text.size() != 2)
        return std::nullopt;
    const bool isTwelveHour = text == "am" || text == "pm";
    if (!hour || !minute || (!text.empty() && !isTwelveHour) || (!hasMinutes && !isTwelveHour))
        return std::nullopt;
    if (*minute >= kMinutesPerHour || *hour >= 24 || (isTwelveHour && (*hour < 1 || *hour > 12)))
        return std::nullopt;
    if (isTwelveHour)
        *hour = *hour % 12 + (text == "pm" ? 12 : 0);
    return *hour * kMinutesPerHour + *minute;
}

/// Returns the minutes of "20", "20min" and "2h".
std::optional<int> delay(std::string_view text) {
    const auto number = takeNumber(text);
    constexpr std::array<std::string_view, 5> kMinuteNames{"", "m", "min", "minute", "minutes"};
    constexpr std::array<std::string_view, 3> kHourNames{"h", "hour", "hours"};
    int unit = 0;
    if (std::ranges::count(kMinuteNames, text) > 0)
        unit = 1;
    if (std::ranges::count(kHourNames, text) > 0)
        unit = kMinutesPerHour;
    if (!number || unit == 0 || *number < 1 || *number > kMaximumDelay / unit)
        return std::nullopt;
    return *number * unit;
}

std::optional<WarningTime> withKind(Kind kind, std::optional<int> minutes) {
    return minutes ? std::optional(WarningTime{kind, *minutes}) : std::nullopt;
}

std::string clockText(int minutes) {
    std::array<char, 16> text{};
    std::snprintf(text.data(), text.size(), "%02d:%02d", minutes / kMinutesPerHour,
                  minutes % kMinutesPerHour);
    return text.data();
}

std::int64_t secondOfHour(std::int64_t localSeconds) {
    return (localSeconds % kSecondsPerHour + kSecondsPerHour) % kSecondsPerHour;
}

std::int64_t nextFullHour(std::int64_t since, const ZoneRules& rules) {
    for (;;) {
        const std::int64_t offset = rules.offsetAt(since).secondsFromUTC;
        const std::int64_t next = since + kSecondsPerHour - secondOfHour(since + offset);
        const auto transition = rules.nextTransition(since);
        if (!transition || next < transition->instant)
            return next;
        since = transition->instant;
        if (secondOfHour(since + transition->after.secondsFromUTC) == 0)
            return since;
    }
}

std::optional<std::int64_t> nextTimeOfDay(int minutes, std::int64_t since, const ZoneRules& rules) {
    CivilTime local = rules.localTime(since);
    // The clocks of one day may show what they showed the day before.
    local = {local.year, local.month, local.day - 1, 0, minutes};
    for (int day = 0; day < 4; ++day, ++local.day) {
        const auto instants = rules.instantsOf(local);
        if (!instants || instants->first > since)
            return instants ? std::optional(instants->first) : std::nullopt;
    }
    return std::nullopt;
}

} // namespace

std::optional<WarningTime> WarningTime::parse(std::string_view text) {
    if (text.size() > kMaximumText)
        return std::nullopt;
    const std::string compacted = compact(text);
    std::string_view rest = compacted;
    if (rest == "everyhour")
        return WarningTime{Kind::EveryHour};
    if (skip(rest, "everydayat"))
        return withKind(Kind::EveryDay, timeOfDay(rest));
    if (skip(rest, "at"))
        return withKind(Kind::Once, timeOfDay(rest));
    if (skip(rest, "in"))
        return withKind(Kind::Delay, delay(rest));
    const auto once = withKind(Kind::Once, timeOfDay(rest));
    return once ? once : withKind(Kind::Delay, delay(rest));
}

std::string WarningTime::text() const {
    switch (kind) {
    case Kind::EveryHour:
        return "every hour";
    case Kind::EveryDay:
        return "every day at " + clockText(minutes);
    case Kind::Once:
        return "at " + clockText(minutes);
    case Kind::Delay:
        break;
    }
    return "in " + std::to_string(minutes) + (minutes == 1 ? " minute" : " minutes");
}

std::optional<std::int64_t> nextOccurrence(const WarningTime& time, std::int64_t since,
                                           const ZoneRules& rules) {
    if (time.kind == Kind::EveryHour)
        return nextFullHour(since, rules);
    if (time.kind == Kind::Delay)
        return since + std::int64_t{time.minutes} * kSecondsPerMinute;
    return nextTimeOfDay(time.minutes, since, rules);
}

std::optional<Occurrences> occurrencesUntil(const WarningTime& time, std::int64_t since,
                                            std::int64_t now, const ZoneRules& rules) {
    if (time.isRecurring())
        since = std::max(since, now - kOldestOccurrence);
    Occurrences result;
    for (auto next = nextOccurrence(time, since, rules); next && *next <= now;
         next = nextOccurrence(time, *next, rules)) {
        if (result.count++ == 0)
            result.first = *next;
        result.last = *next;
        if (!time.isRecurring())
            break;
    }
    return result.count > 0 ? std::optional(result) : std::nullopt;
}

} // namespace warnings
