#pragma once

#include <bitset>
#include <chrono>

namespace extras {

/// How weeks are numbered. Week 1 of a year is its first week that has at least minimalDays days in
/// that year.
struct WeekNumbering {
    std::chrono::weekday firstWeekday = std::chrono::Monday;
    unsigned minimalDays = 4; ///< 1 to 7
};

/// The numbering of ISO 8601.
inline constexpr WeekNumbering kIsoWeeks{};

/// Returns the number of the week that contains @p day, from 1 to 53. The first days of a year may
/// belong to the last week of the year before, and the last days to week 1 of the next one.
int weekNumber(std::chrono::sys_days day, const WeekNumbering& numbering);

/// Returns the number to show beside a row of seven days from @p firstDay on: that of the week to
/// which most of them belong.
int weekNumberOfRow(std::chrono::sys_days firstDay, const WeekNumbering& numbering);

/// The weekdays of a country.
struct WeekRules {
    WeekNumbering numbering;
    std::bitset<7> weekend{0b1000001}; ///< Sunday is bit 0

    bool isWeekend(std::chrono::sys_days day) const {
        return weekend[std::chrono::weekday(day).c_encoding()];
    }
};

/// Returns the rules of the user's locale. The C library knows the first working day of a week, not
/// the weekend; the two days before it are taken as the weekend.
WeekRules localeWeekRules();

} // namespace extras
