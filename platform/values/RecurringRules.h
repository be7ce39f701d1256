#pragma once

#include "platform/values/ZoneRules.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string_view>

namespace platform {

/// When daylight saving starts or ends in each year.
struct RecurringDate {
    enum class Kind { DayWithoutLeapDay, Day, Weekday };
    Kind kind = Kind::Weekday;
    int month = 1;   ///< of a Weekday
    int week = 1;    ///< 1 to 5, the last
    int day = 0;     ///< from 1 without leap day; otherwise from 0; of the week, 0 is Sunday
    int time = 7200; ///< local time of day in seconds; can be negative or more than a day

    /// Returns the local time in seconds since 1970-01-01 00:00:00.
    std::int64_t inYear(std::int64_t year) const;
};

/// Rules that repeat every year, as in the environment variable TZ. Times are in seconds since 1970
/// without leap seconds.
class RecurringRules {
  public:
    /// Returns std::nullopt if @p text is malformed.
    static std::optional<RecurringRules> parse(std::string_view text);

    const ZoneOffset& offsetAt(std::int64_t time) const;
    std::optional<std::int64_t> nextChange(std::int64_t time) const;
    /// Returns the last change at or before @p time.
    std::optional<std::int64_t> previousChange(std::int64_t time) const;

  private:
    struct Event {
        std::int64_t time;
        bool starts;
    };
    static constexpr int kYears = 5;
    using Events = std::array<Event, std::size_t{2} * kYears>;

    Events eventsAround(std::int64_t timeInCycle) const;

    ZoneOffset standard_;
    ZoneOffset daylight_;
    bool hasDaylight_ = false;
    RecurringDate start_;
    RecurringDate end_;
};

} // namespace platform
