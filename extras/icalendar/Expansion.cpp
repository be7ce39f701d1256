#include "extras/icalendar/Expansion.h"

#include <algorithm>
#include <string_view>
#include <tuple>
#include <utility>

using std::chrono::days;
using std::chrono::sys_days;

namespace extras::icalendar {
namespace {

/// How far the dates of two zones can be apart: the time on the date line differs by 26 hours.
constexpr days kZoneDays{2};
/// How many days of a repeated event are shown each time.
constexpr days kMaximumRepeatedDays{366};
constexpr std::int64_t kDaySeconds = 24 * 60 * 60;

platform::CivilTime civilTimeOf(const Moment& moment) {
    const std::chrono::year_month_day date(moment.day);
    return {.year = static_cast<int>(date.year()),
            .month = static_cast<int>(static_cast<unsigned>(date.month())),
            .day = static_cast<int>(static_cast<unsigned>(date.day())),
            .second = moment.second};
}

std::int64_t secondsBetween(const Moment& start, const Moment& end) {
    return (end.day - start.day).count() * kDaySeconds + end.second - start.second;
}

} // namespace

Expansion::Expansion(platform::TimeZones& zones, sys_days first, sys_days last, std::size_t maximum)
    : zones_(zones), first_(first), last_(last), maximum_(maximum) {}

void Expansion::add(Calendar& calendar, const std::string& name) {
    calendarName_ = calendar.name.empty() ? name : calendar.name;
    rules_ = {zones_.local(), platform::ZoneRules()};
    const auto& names = calendar.zones.names();
    for (std::size_t i = rules_.size(); i < names.size(); ++i)
        rules_.push_back(zones_.zone(names[i]).value_or(rules_[Zones::kLocal]));
    countingSteps_ = &calendar.countingSteps;
    for (Event& event : calendar.events)
        if (!isIncomplete_)
            add(event);
}

std::vector<CalendarEvent> Expansion::take() {
    std::ranges::sort(events_, {}, [](const CalendarEvent& event) {
        return std::tuple(event.day, event.minuteOfDay, !event.isHoliday,
                          std::string_view(event.title), std::string_view(event.calendar));
    });
    return std::move(events_);
}

void Expansion::add(Event& event) {
    const days length = std::max(event.end.day - event.start.day, days(0));
    const days margin = event.start.hasTime() ? kZoneDays : days(0);
    const sys_days to = last_ + margin;
    if (!event.repetition) {
        if (event.start.day <= to && event.start.day + length >= first_ - margin)
            addAt(event, event.start);
        return;
    }
    addRepetitions(event, first_ - margin - std::min(length, kMaximumRepeatedDays), to);
}

void Expansion::addRepetitions(Event& event, sys_days from, sys_days to) {
    Repetition& repetition = *event.repetition;
    starts_ = {event.start};
    for (RecurrenceRule& rule : repetition.rules)
        addRuleDays(rule, event, from, to);
    for (const Moment& moment : repetition.added)
        if (moment.day >= from && moment.day <= to)
            starts_.push_back(moment);
    std::sort(starts_.begin(), starts_.end());
    starts_.erase(std::unique(starts_.begin(), starts_.end()), starts_.end());
    if (!repetition.excluded.empty())
        removeExcluded(repetition.excluded);
    for (const Moment& start : starts_)
        addAt(event, start);
}

void Expansion::addRuleDays(RecurrenceRule& rule, const Event& event, sys_days from, sys_days to) {
    const Moment& start = event.start;
    if (start.day >= to)
        return;
    sys_days last = to;
    if (rule.until())
        last = std::min(last, lastDayBefore(*rule.until(), start));
    if (const auto counted = rule.lastCounted(*countingSteps_))
        last = std::min(last, *counted);
    for (sys_days day = std::max(from, start.day); day <= last; day += days(1))
        if (rule.contains(CivilDay(day)))
            starts_.push_back({day, start.second, start.zone});
}

void Expansion::removeExcluded(const std::vector<Moment>& excluded) {
    std::vector<sys_days> excludedDays;
    std::vector<std::int64_t> instants;
    for (const Moment& moment : excluded) {
        if (moment.hasTime() && starts_.front().hasTime())
            instants.push_back(instantOf(moment));
        else
            excludedDays.push_back(moment.day);
    }
    std::ranges::sort(excludedDays);
    std::ranges::sort(instants);
    std::erase_if(starts_, [&](const Moment& start) {
        return std::ranges::binary_search(excludedDays, start.day) ||
               (start.hasTime() && std::ranges::binary_search(instants, instantOf(start)));
    });
}

void Expansion::addAt(const Event& event, const Moment& start) {
    if (!start.hasTime()) {
        const days length = event.end.day - event.start.day;
        return addDays(event, start.day, start.day + length - days(1), std::nullopt);
    }
    const std::int64_t instant = instantOf(start);
    const bool hasOneZone = event.start.zone == event.end.zone;
    const std::int64_t end = hasOneZone
                                 ? instantOf(later(start, secondsBetween(event.start, event.end)))
                                 : instant + instantOf(event.end) - instantOf(event.start);
    const Moment shown = localMoment(instant, Zones::kLocal);
    const Moment shownLast = localMoment(std::max(instant, end - 1), Zones::kLocal);
    addDays(event, shown.day, shownLast.day, shown.second / 60);
}

void Expansion::addDays(const Event& event, sys_days first, sys_days last,
                        std::optional<int> minuteOfDay) {
    if (event.repetition)
        last = std::min(last, first + kMaximumRepeatedDays - days(1));
    for (sys_days day = std::max(first, first_); day <= std::min(last, last_); day += days(1)) {
        if (events_.size() == maximum_) {
            isIncomplete_ = true;
            return;
        }
        events_.push_back({event.title, calendarName_, day,
                           day == first ? minuteOfDay : std::nullopt, event.isHoliday});
    }
}

/// Returns the first instant at which the clocks show a time. A time that they skip is the one that
/// they would show if they had not been changed.
std::int64_t Expansion::instantOf(const Moment& moment) const {
    const platform::ZoneRules& rules = rules_[moment.zone];
    const platform::CivilTime time = civilTimeOf(moment);
    const auto instants = rules.instantsOf(time);
    if (!instants)
        return 0; // not in the years of iCalendar
    if (instants->kind != platform::LocalInstants::Kind::Skipped)
        return instants->first;
    return *platform::secondsSince1970(time) - rules.offsetAt(instants->first - 1).secondsFromUTC;
}

Moment Expansion::localMoment(std::int64_t instant, std::uint32_t zone) const {
    const platform::CivilTime time = rules_[zone].localTime(instant);
    const std::chrono::year_month_day date(std::chrono::year(static_cast<int>(time.year)),
                                           std::chrono::month(static_cast<unsigned>(time.month)),
                                           std::chrono::day(static_cast<unsigned>(time.day)));
    return {date, (time.hour * 60 + time.minute) * 60 + time.second, zone};
}

/// Returns the last day on which an event with the time of @p start begins no later than @p until.
sys_days Expansion::lastDayBefore(const Moment& until, const Moment& start) const {
    if (!until.hasTime() || !start.hasTime())
        return until.day;
    const Moment limit =
        until.zone == start.zone ? until : localMoment(instantOf(until), start.zone);
    return limit.day - days(start.second > limit.second ? 1 : 0);
}

} // namespace extras::icalendar
