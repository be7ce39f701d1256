#include "extras/icalendar/RecurrenceRule.h"

#include <algorithm>

using std::chrono::days;
using std::chrono::sys_days;

namespace extras::icalendar {
namespace {

constexpr std::int64_t kMaximumSteps = 100'000; // 273 years of days
constexpr int kMaximumYear = 9999;
constexpr sys_days kEndOfTime = std::chrono::year(kMaximumYear + 1) / 1 / 1;

std::int64_t floorDivision(std::int64_t dividend, std::int64_t divisor) {
    const std::int64_t quotient = dividend / divisor;
    return dividend % divisor < 0 ? quotient - 1 : quotient;
}

/// Returns the number of the week that contains a day, if weeks begin on @p weekStart.
std::int64_t weekOf(sys_days day, int weekStart) {
    constexpr int kWeekdayOfDayZero = 4;
    return floorDivision(day.time_since_epoch().count() + kWeekdayOfDayZero - weekStart, 7);
}

/// Whether day @p index of @p length days with the same weekday pattern is the @p number-th one of
/// its weekday, counted from the end if negative.
bool isNumbered(int number, int index, int length) {
    return number > 0 ? (index - 1) / 7 + 1 == number : (length - index) / 7 + 1 == -number;
}

} // namespace

CivilDay::CivilDay(sys_days which) : day(which) {
    const std::chrono::year_month_day date(which);
    year = static_cast<int>(date.year());
    month = static_cast<int>(static_cast<unsigned>(date.month()));
    dayOfMonth = static_cast<int>(static_cast<unsigned>(date.day()));
    const std::chrono::year_month_day_last last(date.year() / date.month() / std::chrono::last);
    daysInMonth = static_cast<int>(static_cast<unsigned>(last.day()));
    weekday = static_cast<int>(std::chrono::weekday(which).c_encoding());
}

void RecurrenceRule::startAt(const Moment& first) {
    const CivilDay day(first.day);
    const bool hasDays =
        (monthDays_ | monthDaysFromEnd_ | weekdays_) != 0 || !numberedWeekdays_.empty();
    if (!hasDays && frequency_ == Frequency::Weekly)
        weekdays_ = static_cast<std::uint8_t>(bit(day.weekday));
    if (!hasDays && frequency_ >= Frequency::Monthly)
        monthDays_ = bit(day.dayOfMonth);
    if (!hasDays && frequency_ == Frequency::Yearly && months_ == 0)
        months_ = static_cast<std::uint16_t>(bit(day.month));
    if (until_ && until_->zone == Zones::kLocal)
        until_->zone = first.zone;
    first_ = first.day;
    firstPeriod_ = periodOf(day);
}

bool RecurrenceRule::contains(const CivilDay& day) {
    return day.day > first_ && hasDate(day) && isInPeriod(day) && hasPosition(day);
}

std::optional<sys_days> RecurrenceRule::lastCounted(std::int64_t& steps) {
    if (!count_ || lastCounted_)
        return lastCounted_;
    const std::int64_t leastSteps = steps - kMaximumSteps;
    sys_days last = first_;
    sys_days day = first_;
    for (int remaining = *count_ - 1; remaining > 0;) {
        day = nextCandidate(day);
        if (day >= kEndOfTime || steps <= std::max<std::int64_t>(leastSteps, 0)) {
            count_.reset();
            return std::nullopt;
        }
        --steps;
        if (!contains(CivilDay(day)))
            continue;
        last = day;
        --remaining;
    }
    lastCounted_ = last;
    return lastCounted_;
}

std::int64_t RecurrenceRule::periodOf(const CivilDay& day) const {
    switch (frequency_) {
    case Frequency::Daily:
        return day.day.time_since_epoch().count();
    case Frequency::Weekly:
        return weekOf(day.day, weekStart_);
    case Frequency::Monthly:
        return day.year * 12 + day.month - 1;
    case Frequency::Yearly:
        break;
    }
    return day.year;
}

sys_days RecurrenceRule::firstDayOf(std::int64_t period) const {
    const std::int64_t daysPerPeriod = frequency_ == Frequency::Daily ? 1 : 7;
    if (frequency_ <= Frequency::Weekly) {
        const sys_days origin{}; // a day of period 0 or, for weeks, of the period around it
        const std::int64_t offset =
            frequency_ == Frequency::Daily ? 0 : weekStart_ - 4; // day 0 is a Thursday
        const std::int64_t number = period * daysPerPeriod + offset;
        const std::int64_t end = kEndOfTime.time_since_epoch().count();
        return origin + days(std::min(number, end));
    }
    const std::int64_t monthsPerYear = frequency_ == Frequency::Monthly ? 12 : 1;
    const std::int64_t year = floorDivision(period, monthsPerYear);
    if (year > kMaximumYear)
        return kEndOfTime;
    const auto month = static_cast<unsigned>(period - year * monthsPerYear + 1);
    return std::chrono::year(static_cast<int>(year)) / std::chrono::month(month) / 1;
}

bool RecurrenceRule::isInPeriod(const CivilDay& day) const {
    return interval_ == 1 || (periodOf(day) - firstPeriod_) % interval_ == 0;
}

bool RecurrenceRule::hasDate(const CivilDay& day) const {
    if (months_ != 0 && (months_ & bit(day.month)) == 0)
        return false;
    const int fromEnd = day.daysInMonth - day.dayOfMonth + 1;
    if ((monthDays_ | monthDaysFromEnd_) != 0 && (monthDays_ & bit(day.dayOfMonth)) == 0 &&
        (monthDaysFromEnd_ & bit(fromEnd)) == 0)
        return false;
    if (weekdays_ == 0 && numberedWeekdays_.empty())
        return true;
    return (weekdays_ & bit(day.weekday)) != 0 || hasNumberedWeekday(day);
}

bool RecurrenceRule::hasNumberedWeekday(const CivilDay& day) const {
    int index = day.dayOfMonth;
    int length = day.daysInMonth;
    if (frequency_ == Frequency::Yearly && months_ == 0) {
        const std::chrono::year year(day.year);
        index = static_cast<int>((day.day - sys_days(year / 1 / 1)).count()) + 1;
        length = year.is_leap() ? 366 : 365;
    }
    return std::ranges::any_of(numberedWeekdays_, [&](const NumberedWeekday& one) {
        return one.weekday == day.weekday && isNumbered(one.number, index, length);
    });
}

bool RecurrenceRule::hasPosition(const CivilDay& day) {
    if (positions_.empty())
        return true;
    const std::int64_t period = periodOf(day);
    if (selectedPeriod_ != period)
        selectPositions(period);
    return std::ranges::count(selectedDays_, day.day) > 0;
}

void RecurrenceRule::selectPositions(std::int64_t period) {
    std::vector<sys_days> matching;
    for (sys_days day = firstDayOf(period); day < firstDayOf(period + 1); day += days(1))
        if (hasDate(CivilDay(day)))
            matching.push_back(day);
    const auto count = static_cast<int>(matching.size());
    selectedPeriod_ = period;
    selectedDays_.clear();
    for (const int position : positions_)
        if (const int index = position > 0 ? position - 1 : count + position;
            index >= 0 && index < count)
            selectedDays_.push_back(matching[static_cast<std::size_t>(index)]);
}

sys_days RecurrenceRule::nextCandidate(sys_days day) const {
    const CivilDay next(day + days(1));
    if (!isInPeriod(next)) {
        const std::int64_t periods = (periodOf(next) - firstPeriod_) / interval_ + 1;
        return firstDayOf(firstPeriod_ + periods * interval_);
    }
    const bool isInMonth = months_ == 0 || (months_ & bit(next.month)) != 0;
    return isInMonth ? next.day : next.day + days(next.daysInMonth - next.dayOfMonth + 1);
}

} // namespace extras::icalendar
