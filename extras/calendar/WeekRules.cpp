#include "extras/calendar/WeekRules.h"

#include "extras/clock/ClockFormat.h"

#include <algorithm>
#include <cstdint>
#include <langinfo.h>

using namespace std::chrono;

namespace extras {
namespace {

sys_days startOfWeek(sys_days day, weekday first) {
    return day - (weekday(day) - first);
}

/// Returns an item of the locale that is one byte.
unsigned byteOf(nl_item item) {
    return static_cast<unsigned char>(*nl_langinfo_l(item, clock_format::userLocale()));
}

/// Returns the day from which the locale counts weekdays, which it stores as a number such as
/// 19971130 in place of an address.
weekday originOfWeekdays() {
    const char* const item = nl_langinfo_l(_NL_TIME_WEEK_1STDAY, clock_format::userLocale());
    const auto date = static_cast<unsigned>(reinterpret_cast<std::uintptr_t>(item));
    const year_month_day day(year(static_cast<int>(date / 10000)), month(date / 100 % 100),
                             std::chrono::day(date % 100));
    return day.ok() ? weekday(day) : Sunday;
}

/// Converts a position in the locale's week, from 1, to a weekday.
weekday weekdayAt(unsigned position) {
    return originOfWeekdays() + days(position >= 1 && position <= 7 ? position - 1 : 0);
}

} // namespace

int weekNumber(sys_days day, const WeekNumbering& numbering) {
    const sys_days start = startOfWeek(day, numbering.firstWeekday);
    // The week belongs to the year of this day.
    const year_month_day decisive(start + days(7 - numbering.minimalDays));
    const sys_days inWeekOne = decisive.year() / January / std::chrono::day(numbering.minimalDays);
    return static_cast<int>((start - startOfWeek(inWeekOne, numbering.firstWeekday)).count() / 7) +
           1;
}

int weekNumberOfRow(sys_days firstDay, const WeekNumbering& numbering) {
    const weekday middle = numbering.firstWeekday + days(3);
    return weekNumber(firstDay + (middle - weekday(firstDay)), numbering);
}

WeekRules localeWeekRules() {
    WeekRules rules;
    rules.numbering.firstWeekday = weekdayAt(byteOf(_NL_TIME_FIRST_WEEKDAY));
    rules.numbering.minimalDays = std::clamp(byteOf(_NL_TIME_WEEK_1STWEEK), 1U, 7U);
    const weekday workday = weekdayAt(byteOf(_NL_TIME_FIRST_WORKDAY));
    rules.weekend.reset();
    for (const days before : {days(1), days(2)})
        rules.weekend.set((workday - before).c_encoding());
    return rules;
}

} // namespace extras
