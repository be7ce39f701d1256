#pragma once

#include "extras/icalendar/EventCalendars.h"

#include <chrono>
#include <functional>
#include <vector>

namespace extras {

/// Returns the events of the days from the first to the last argument, ordered by day and time.
using EventsBetween = std::function<std::vector<CalendarEvent>(std::chrono::sys_days first,
                                                               std::chrono::sys_days last)>;

} // namespace extras
