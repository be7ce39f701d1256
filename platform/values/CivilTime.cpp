#include "platform/values/CivilTime.h"

namespace platform {
namespace {

constexpr std::int64_t kSecondsPerDay = 86'400;
/// The calendar repeats after 400 years, which are a whole number of weeks.
constexpr std::int64_t kYearsPerCycle = 400;
constexpr std::int64_t kDaysPerCycle = 146'097;
/// From March 1 of year 0 to 1970-01-01.
constexpr std::int64_t kDaysTo1970 = 719'468;

std::int64_t floorDivide(std::int64_t number, std::int64_t divisor) {
    return number / divisor - (number % divisor < 0 ? 1 : 0);
}

/// Not computed from the quotient, whose product may not fit near the lower limit.
constexpr std::int64_t floorModulo(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t rest = dividend % divisor;
    return rest < 0 ? rest + divisor : rest;
}

/// A year that begins in March, so that the leap day is its last, as a cycle and a day in it.
struct CycleDay {
    std::int64_t cycle;
    std::int64_t day; ///< of the cycle; out of range like CivilTime::day
};

CycleDay cycleDay(const CivilTime& time) {
    const std::int64_t months = std::int64_t{time.month} - 3;
    const std::int64_t carriedYears = floorDivide(months, 12);
    const std::int64_t month = months - carriedYears * 12;
    std::int64_t cycle = floorDivide(time.year, kYearsPerCycle);
    std::int64_t year = floorModulo(time.year, kYearsPerCycle) + carriedYears;
    cycle += floorDivide(year, kYearsPerCycle);
    year -= floorDivide(year, kYearsPerCycle) * kYearsPerCycle;
    return {cycle, year * 365 + year / 4 - year / 100 + (153 * month + 2) / 5 + time.day - 1};
}

} // namespace

CivilTime civilTime(std::int64_t seconds, std::int32_t secondsFromUTC) {
    std::int64_t days = floorDivide(seconds, kSecondsPerDay);
    std::int64_t second = floorModulo(seconds, kSecondsPerDay) + secondsFromUTC;
    days += floorDivide(second, kSecondsPerDay);
    second -= floorDivide(second, kSecondsPerDay) * kSecondsPerDay;

    days += kDaysTo1970;
    const std::int64_t cycle = floorDivide(days, kDaysPerCycle);
    const std::int64_t day = days - cycle * kDaysPerCycle;
    const std::int64_t year = (day - day / 1460 + day / 36'524 - day / 146'096) / 365;
    const std::int64_t dayOfYear = day - (365 * year + year / 4 - year / 100);
    const std::int64_t month = (5 * dayOfYear + 2) / 153; // from March
    return {.year = cycle * kYearsPerCycle + year + (month >= 10 ? 1 : 0),
            .month = static_cast<int>(month < 10 ? month + 3 : month - 9),
            .day = static_cast<int>(dayOfYear - (153 * month + 2) / 5 + 1),
            .hour = static_cast<int>(second / 3600),
            .minute = static_cast<int>(second / 60 % 60),
            .second = static_cast<int>(second % 60)};
}

std::optional<std::int64_t> secondsSince1970(const CivilTime& time) {
    const CycleDay position = cycleDay(time);
    const std::int64_t timeOfDay =
        std::int64_t{time.hour} * 3600 + std::int64_t{time.minute} * 60 + time.second;
    // Whole days first: near the limits, the days alone may not fit though the sum does.
    const std::int64_t carriedDays = floorDivide(timeOfDay, kSecondsPerDay);
    std::int64_t days = 0;
    if (__builtin_mul_overflow(position.cycle, kDaysPerCycle, &days) ||
        __builtin_add_overflow(days, position.day - kDaysTo1970 + carriedDays, &days))
        return std::nullopt;
    std::int64_t rest = timeOfDay - carriedDays * kSecondsPerDay;
    if (days < 0) {
        ++days;
        rest -= kSecondsPerDay;
    }
    std::int64_t result = 0;
    if (__builtin_mul_overflow(days, kSecondsPerDay, &result) ||
        __builtin_add_overflow(result, rest, &result))
        return std::nullopt;
    return result;
}

int weekday(const CivilTime& time) {
    constexpr std::int64_t kWednesday = 3; // March 1 of year 0
    const std::int64_t days = cycleDay(time).day + kWednesday;
    return static_cast<int>(days - floorDivide(days, 7) * 7);
}

} // namespace platform
