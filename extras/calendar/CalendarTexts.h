#pragma once

#include "extras/calendar/DayRange.h"

#include <array>
#include <chrono>
#include <string>
#include <string_view>

/// Dates in words, in the user's language and locale. See extras::bindTexts. Main thread only.
namespace extras::calendar_texts {

/// Formats a day with a clock format (extras/clock/ClockFormat.h). Returns an empty string if the
/// result exceeds 16383 bytes.
std::string text(std::string_view format, std::chrono::sys_days day);

/// Returns a number in the digits of the locale.
std::string number(int value);

/// Returns a month and its year, such as "November 2026".
std::string heading(std::chrono::year_month month);
/// Returns the abbreviated names of the weekdays, the first one being Sunday.
std::array<std::string, 7> weekdayNames();

/// Returns a day with its weekday and year, in words.
std::string longDate(std::chrono::sys_days day);
/// Returns where a day is from today: "Today", "Tomorrow", "In 3 days", "3 days ago".
std::string distance(std::chrono::sys_days day, std::chrono::sys_days today);

/// Returns both ends of a range, shortened: "28 Nov – 3 Dec 2026".
std::string shortRange(const DayRange& range);
/// Returns the length of a range: "10 days · 8 working days".
std::string length(const DayRange& range, int workingDays);
/// Returns the length of a range in weeks: "1 week 3 days", or an empty text if it is shorter than
/// a week.
std::string lengthInWeeks(const DayRange& range);

/// Returns the time of day of an event, such as "14:05".
std::string timeOfDay(int minuteOfDay);

} // namespace extras::calendar_texts
