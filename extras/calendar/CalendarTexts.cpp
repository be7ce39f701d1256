#include "extras/calendar/CalendarTexts.h"

#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"

#include <ctime>
#include <langinfo.h>

using namespace std::chrono;

namespace extras::calendar_texts {
namespace {

std::tm momentOf(sys_days day, int minuteOfDay = 0) {
    const year_month_day date(day);
    std::tm moment{};
    moment.tm_year = static_cast<int>(date.year()) - 1900;
    moment.tm_mon = static_cast<int>(static_cast<unsigned>(date.month())) - 1;
    moment.tm_mday = static_cast<int>(static_cast<unsigned>(date.day()));
    moment.tm_hour = minuteOfDay / 60;
    moment.tm_min = minuteOfDay % 60;
    moment.tm_wday = static_cast<int>(weekday(day).c_encoding());
    moment.tm_yday = static_cast<int>((day - sys_days(date.year() / January / 1)).count());
    moment.tm_isdst = -1;
    moment.tm_zone = "";
    return moment;
}

std::string_view localeInfo(nl_item item) {
    return nl_langinfo_l(item, clock_format::userLocale());
}

} // namespace

std::string text(std::string_view format, sys_days day) {
    return clock_format::text(std::string(format), momentOf(day));
}

std::string number(int value) {
    std::string result;
    for (const char digit : std::to_string(value))
        if (digit == '-')
            result += digit;
        else
            result += localeInfo(_NL_CTYPE_OUTDIGIT0_MB + (digit - '0'));
    return result;
}

std::string heading(year_month month) {
    // Translators: the month and the year above a calendar, as a strftime format.
    return text(tr("%OB %Y"), month / 1);
}

std::array<std::string, 7> weekdayNames() {
    std::array<std::string, 7> names;
    for (int i = 0; i < 7; ++i)
        names[static_cast<std::size_t>(i)] = localeInfo(ABDAY_1 + i);
    return names;
}

std::string longDate(sys_days day) {
    return text(clock_format::fullDate(), day);
}

std::string distance(sys_days day, sys_days today) {
    const long count = (day - today).count();
    if (count == 0)
        return tr("Today");
    if (count == 1)
        return tr("Tomorrow");
    if (count == -1)
        return tr("Yesterday");
    return count > 0 ? tr("In %1 day", "In %1 days", count)
                     : tr("%1 day ago", "%1 days ago", -count);
}

std::string shortRange(const DayRange& range) {
    const bool sameYear = year_month_day(range.first).year() == year_month_day(range.last).year();
    const std::string dayAndMonth = clock_format::date().substr(3); // without the weekday
    const std::string full = dayAndMonth + (dayAndMonth.starts_with("%b") ? ", %Y" : " %Y");
    // Translators: the first and the last day of a range.
    return fill(tr("%1 – %2"),
                {text(sameYear ? dayAndMonth : full, range.first), text(full, range.last)});
}

std::string length(const DayRange& range, int workingDays) {
    return tr("%1 day", "%1 days", range.days()) + " · " +
           tr("%1 working day", "%1 working days", workingDays);
}

std::string lengthInWeeks(const DayRange& range) {
    const int weeks = range.days() / 7;
    const int rest = range.days() % 7;
    if (weeks == 0)
        return {};
    const std::string text = tr("%1 week", "%1 weeks", weeks);
    return rest == 0 ? text : text + ' ' + tr("%1 day", "%1 days", rest);
}

std::string timeOfDay(int minuteOfDay) {
    return clock_format::text(clock_format::time(), momentOf({}, minuteOfDay));
}

} // namespace extras::calendar_texts
