#include "extras/calendar/MonthLayout.h"

using namespace std::chrono;

namespace extras {

MonthLayout::MonthLayout(year_month month, weekday firstWeekday) : month_(month) {
    const sys_days start = month / 1;
    first_ = start - (weekday(start) - firstWeekday);
}

std::optional<int> MonthLayout::cellOf(sys_days day) const {
    if (day < first_ || day > last())
        return std::nullopt;
    return static_cast<int>((day - first_).count());
}

bool MonthLayout::isInMonth(sys_days day) const {
    return monthOf(day) == month_;
}

year_month monthOf(sys_days day) {
    const year_month_day date(day);
    return date.year() / date.month();
}

} // namespace extras
