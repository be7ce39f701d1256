#pragma once

#include "extras/HalvexDateCalMenu/CalendarEvents.h"
#include "extras/calendar/CalendarSelection.h"
#include "extras/calendar/WeekRules.h"

#include <chrono>
#include <optional>
#include <string>
#include <vector>

namespace extras {

/// The selected days in words.
struct SelectionDetails {
    std::string title;    ///< the date, or both ends of the range
    std::string subtitle; ///< week and distance from today, or the length of the range
    std::string weeks;    ///< the length of the range in weeks, or empty
    std::vector<CalendarEvent> events;
};

/// Describes a selection. @p events are those of the selected days; holidays among them are not
/// working days. Weeks are named only with a @p numbering.
SelectionDetails describe(const CalendarSelection& selection, std::chrono::sys_days today,
                          const WeekRules& rules, const std::optional<WeekNumbering>& numbering,
                          std::vector<CalendarEvent> events);

/// Returns an event with its time, such as "14:05 Lunch".
std::string eventText(const CalendarEvent& event);

} // namespace extras
