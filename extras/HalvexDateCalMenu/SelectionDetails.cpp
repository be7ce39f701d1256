#include "extras/HalvexDateCalMenu/SelectionDetails.h"

#include "extras/calendar/CalendarTexts.h"
#include "extras/shared/Texts.h"

#include <set>
#include <utility>

using namespace std::chrono;

namespace extras {
namespace {

int workingDays(const DayRange& range, const WeekRules& rules,
                const std::vector<CalendarEvent>& events) {
    std::set<sys_days> holidays;
    for (const CalendarEvent& event : events)
        if (event.isHoliday && range.contains(event.day) && !rules.isWeekend(event.day))
            holidays.insert(event.day);
    return range.workingDays(rules) - static_cast<int>(holidays.size());
}

} // namespace

SelectionDetails describe(const CalendarSelection& selection, sys_days today,
                          const WeekRules& rules, const std::optional<WeekNumbering>& numbering,
                          std::vector<CalendarEvent> events) {
    SelectionDetails details;
    if (selection.isRange()) {
        const DayRange range = selection.range();
        details.title = calendar_texts::shortRange(range);
        details.subtitle = calendar_texts::length(range, workingDays(range, rules, events));
        details.weeks = calendar_texts::lengthInWeeks(range);
    } else {
        details.title = calendar_texts::longDate(selection.day());
        details.subtitle = calendar_texts::distance(selection.day(), today);
        if (numbering)
            details.subtitle +=
                " · " + fill(tr("Week %1"),
                             {calendar_texts::number(weekNumber(selection.day(), *numbering))});
    }
    details.events = std::move(events);
    return details;
}

std::string eventText(const CalendarEvent& event) {
    if (!event.minuteOfDay)
        return event.title;
    return calendar_texts::timeOfDay(*event.minuteOfDay) + ' ' + event.title;
}

} // namespace extras
