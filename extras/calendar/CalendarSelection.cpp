#include "extras/calendar/CalendarSelection.h"

#include "extras/calendar/MonthLayout.h"

#include <algorithm>

using namespace std::chrono;

namespace extras {
namespace {

constexpr sys_days kFirstDay = year(1) / January / 1;
constexpr sys_days kLastDay = year(9999) / December / 31;

/// Returns the same day of another month, or its last day if it is shorter.
sys_days addMonths(sys_days day, months count) {
    const year_month_day date(day);
    const year_month month = date.year() / date.month() + count;
    const year_month_day sameDay = month / date.day();
    return sameDay.ok() ? sys_days(sameDay) : sys_days(month / last);
}

} // namespace

CalendarSelection::CalendarSelection(sys_days today, int visibleMonths)
    : month_(monthOf(today)), start_(today), day_(today), visibleMonths_(visibleMonths) {}

void CalendarSelection::select(sys_days day, Mode mode) {
    day_ = std::clamp(day, kFirstDay, kLastDay);
    if (mode == Mode::Move)
        start_ = day_;
}

void CalendarSelection::goTo(sys_days day, Mode mode) {
    select(day, mode);
    const year_month target = monthOf(day_);
    if (target < month_)
        month_ = target;
    else if (target >= month_ + months(visibleMonths_))
        month_ = target - months(visibleMonths_ - 1);
}

void CalendarSelection::scrollByMonths(int count) {
    const year_month target = month_ + months(count);
    if (target >= monthOf(kFirstDay) && target + months(visibleMonths_ - 1) <= monthOf(kLastDay))
        month_ = target;
}

void CalendarSelection::moveByMonths(int count) {
    scrollByMonths(count);
    goTo(addMonths(day_, months(count)));
}

} // namespace extras
