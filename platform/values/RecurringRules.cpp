#include "platform/values/RecurringRules.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
/// The calendar, weekdays included, repeats after 400 years.
constexpr std::int64_t kSecondsPerCycle = 146'097 * kSecondsPerDay;

bool isLeapYear(std::int64_t year) {
    return year % 4 == 0 && (year % 100 != 0 || year % 400 == 0);
}

/// Reads the text from left to right. Its operations return std::nullopt if it is malformed.
class Reader {
  public:
    explicit Reader(std::string_view text) : rest_(text) {}

    bool atEnd() const { return rest_.empty(); }
    char peek() const { return rest_.empty() ? '\0' : rest_.front(); }
    bool take(char wanted) {
        if (peek() != wanted)
            return false;
        rest_.remove_prefix(1);
        return true;
    }
    std::optional<int> number(int least, int most) {
        int value = 0;
        std::size_t length = 0;
        for (; length < rest_.size() && isDigit(rest_[length]) && length < 4; ++length)
            value = value * 10 + (rest_[length] - '0');
        if (length == 0 || value < least || value > most)
            return std::nullopt;
        rest_.remove_prefix(length);
        return value;
    }
    /// "EST" or "<-03>"
    std::optional<std::string> abbreviation() {
        const bool isQuoted = take('<');
        const auto belongs = [&](char c) {
            return isLetter(c) || (isQuoted && (isDigit(c) || c == '+' || c == '-'));
        };
        std::size_t length = 0;
        while (length < rest_.size() && belongs(rest_[length]))
            ++length;
        std::string name(rest_.substr(0, length));
        rest_.remove_prefix(length);
        constexpr std::size_t kLeast = 3, kMost = 255;
        if (length < kLeast || length > kMost || (isQuoted && !take('>')))
            return std::nullopt;
        return name;
    }
    /// "-2", "+10:30", "5:45:30", in seconds
    std::optional<int> time(int mostHours) {
        const bool isNegative = take('-');
        if (!isNegative)
            take('+');
        const auto hours = number(0, mostHours);
        if (!hours)
            return std::nullopt;
        int seconds = *hours * 3600;
        for (int unit = 60; unit > 0 && take(':'); unit /= 60) {
            const auto value = number(0, 59);
            if (!value)
                return std::nullopt;
            seconds += *value * unit;
        }
        return isNegative ? -seconds : seconds;
    }
    /// "J60", "59" or "M3.2.0", then perhaps "/2"
    std::optional<RecurringDate> date() {
        constexpr int kMostHours = 167;
        auto result = dayOfDate();
        if (!result || !take('/'))
            return result;
        const auto timeOfDay = time(kMostHours);
        if (!timeOfDay)
            return std::nullopt;
        result->time = *timeOfDay;
        return result;
    }

  private:
    using Kind = RecurringDate::Kind;

    static bool isDigit(char c) { return c >= '0' && c <= '9'; }
    static bool isLetter(char c) { return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z'); }

    std::optional<RecurringDate> dayOfDate() {
        RecurringDate result;
        if (!take('M')) {
            result.kind = take('J') ? Kind::DayWithoutLeapDay : Kind::Day;
            const int least = result.kind == Kind::Day ? 0 : 1;
            const auto day = number(least, 365);
            result.day = day.value_or(0);
            return day ? std::optional(result) : std::nullopt;
        }
        const auto month = number(1, 12);
        const auto week = month && take('.') ? number(1, 5) : std::nullopt;
        const auto day = week && take('.') ? number(0, 6) : std::nullopt;
        if (!day)
            return std::nullopt;
        result.month = *month;
        result.week = *week;
        result.day = *day;
        return result;
    }

    std::string_view rest_;
};

} // namespace

std::int64_t RecurringDate::inYear(std::int64_t year) const {
    const auto days = [](const CivilTime& date) {
        return *secondsSince1970(date) / kSecondsPerDay;
    };
    std::int64_t date = days({.year = year});
    if (kind == Kind::Day) {
        date += day;
    } else if (kind == Kind::DayWithoutLeapDay) {
        constexpr int kFirstOfMarch = 60;
        date += day - 1 + (isLeapYear(year) && day >= kFirstOfMarch ? 1 : 0);
    } else {
        const CivilTime first{.year = year, .month = month};
        const std::int64_t nextMonth = days({.year = year, .month = month + 1});
        date = days(first) + (day - weekday(first) + 7) % 7 + std::int64_t{week - 1} * 7;
        if (date >= nextMonth)
            date -= 7;
    }
    return date * kSecondsPerDay + time;
}

std::optional<RecurringRules> RecurringRules::parse(std::string_view text) {
    constexpr int kMostHours = 24;
    constexpr int kHour = 3600;
    Reader reader(text);
    RecurringRules rules;
    auto name = reader.abbreviation();
    const auto west = name ? reader.time(kMostHours) : std::nullopt;
    if (!west)
        return std::nullopt;
    rules.standard_ = {-*west, false, std::move(*name)};
    if (reader.atEnd())
        return rules;

    name = reader.abbreviation();
    if (!name)
        return std::nullopt;
    rules.hasDaylight_ = true;
    rules.daylight_ = {kHour - *west, true, std::move(*name)};
    if (!reader.atEnd() && reader.peek() != ',') {
        const auto daylightWest = reader.time(kMostHours);
        if (!daylightWest)
            return std::nullopt;
        rules.daylight_.secondsFromUTC = -*daylightWest;
    }
    if (reader.atEnd()) {
        rules.start_ = {.month = 3, .week = 2};
        rules.end_ = {.month = 11, .week = 1};
        return rules;
    }
    const auto start = reader.take(',') ? reader.date() : std::nullopt;
    const auto end = start && reader.take(',') ? reader.date() : std::nullopt;
    if (!end || !reader.atEnd())
        return std::nullopt;
    rules.start_ = *start;
    rules.end_ = *end;
    return rules;
}

/// Returns the events of this year and of two years on either side, because an event can be a week
/// before or after its year.
RecurringRules::Events RecurringRules::eventsAround(std::int64_t timeInCycle) const {
    Events events{};
    std::int64_t year = civilTime(timeInCycle).year - kYears / 2;
    for (std::size_t i = 0; i < events.size(); i += 2, ++year) {
        events[i] = {start_.inYear(year) - standard_.secondsFromUTC, true};
        events[i + 1] = {end_.inYear(year) - daylight_.secondsFromUTC, false};
    }
    // If daylight saving ends when that of the next year starts, it never ends.
    std::ranges::sort(events, {},
                      [](const Event& event) { return std::pair(event.time, event.starts); });
    return events;
}

namespace {

/// Returns a time in the years 1970 to 2369 at the same point of the 400 years.
std::int64_t timeInCycle(std::int64_t time) {
    const std::int64_t rest = time % kSecondsPerCycle;
    return rest < 0 ? rest + kSecondsPerCycle : rest;
}

/// Returns @p time, near @p inCycle, as the time that is the same distance from @p origin.
std::optional<std::int64_t> fromCycle(std::int64_t time, std::int64_t inCycle,
                                      std::int64_t origin) {
    std::int64_t result = 0;
    if (__builtin_add_overflow(origin, time - inCycle, &result))
        return std::nullopt;
    return result;
}

} // namespace

const ZoneOffset& RecurringRules::offsetAt(std::int64_t time) const {
    if (!hasDaylight_)
        return standard_;
    const std::int64_t inCycle = timeInCycle(time);
    bool isDaylight = false;
    for (const Event& event : eventsAround(inCycle))
        if (event.time <= inCycle)
            isDaylight = event.starts;
    return isDaylight ? daylight_ : standard_;
}

std::optional<std::int64_t> RecurringRules::nextChange(std::int64_t time) const {
    if (!hasDaylight_ || standard_ == daylight_)
        return std::nullopt;
    const std::int64_t inCycle = timeInCycle(time);
    const Events events = eventsAround(inCycle);
    bool isDaylight = events[0].starts;
    for (std::size_t i = 1; i < events.size(); ++i) {
        const bool isLast = i + 1 == events.size() || events[i + 1].time != events[i].time;
        if (isLast && events[i].starts != isDaylight && events[i].time > inCycle)
            return fromCycle(events[i].time, inCycle, time);
        if (isLast)
            isDaylight = events[i].starts;
    }
    return std::nullopt;
}

std::optional<std::int64_t> RecurringRules::previousChange(std::int64_t time) const {
    if (!hasDaylight_ || standard_ == daylight_)
        return std::nullopt;
    const std::int64_t inCycle = timeInCycle(time);
    const Events events = eventsAround(inCycle);
    bool isDaylight = events[0].starts;
    std::optional<std::int64_t> result;
    for (std::size_t i = 1; i < events.size() && events[i].time <= inCycle; ++i) {
        const bool isLast = i + 1 == events.size() || events[i + 1].time != events[i].time;
        if (isLast && events[i].starts != isDaylight)
            result = fromCycle(events[i].time, inCycle, time);
        if (isLast)
            isDaylight = events[i].starts;
    }
    return result;
}

} // namespace platform
