#pragma once

#include <compare>
#include <cstdint>
#include <optional>

namespace platform {

/// A date in the Gregorian calendar, which is extended to all years, and a time of day.
struct CivilTime {
    std::int64_t year = 1970; ///< astronomical: 0 is 1 BC
    int month = 1;            ///< from 1
    int day = 1;              ///< from 1
    int hour = 0;
    int minute = 0;
    int second = 0; ///< 60 in a leap second
    friend auto operator<=>(const CivilTime&, const CivilTime&) = default;
};

/// Returns the date and time in UTC, @p secondsSince1970 after 1970-01-01 00:00:00 UTC, or in a
/// zone that is @p secondsFromUTC ahead of it.
CivilTime civilTime(std::int64_t secondsSince1970, std::int32_t secondsFromUTC = 0);

/// Returns the inverse of civilTime in UTC. Fields may be out of range: day 0 is the last day of
/// the previous month, and 07:30 on day 32 of December is 07:30 on January 1. Returns std::nullopt
/// if the result does not fit in 64 bits.
std::optional<std::int64_t> secondsSince1970(const CivilTime& time);

/// Returns the day of the week, from 0 for Sunday to 6. Fields may be out of range.
int weekday(const CivilTime& time);

} // namespace platform
