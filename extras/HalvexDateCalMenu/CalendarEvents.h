#pragma once

#include <functional>
#include <vector>

#if __has_include("extras/icalendar/EventCalendars.h")
#include "extras/icalendar/EventCalendars.h"
#else
#include "platform/base/Watch.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

namespace extras {

struct CalendarEvent {
    std::string title;
    std::string calendar;
    std::chrono::sys_days day;
    std::optional<int> minuteOfDay;
    bool isHoliday = false;
};

class EventCalendars {
  public:
    explicit EventCalendars(const std::string&) {}
    std::vector<CalendarEvent> between(std::chrono::sys_days, std::chrono::sys_days) { return {}; }
    std::vector<std::string> brokenFiles() const { return {}; }
    std::unique_ptr<platform::Watch> onChange(const std::function<void()>&) { return nullptr; }
};

} // namespace extras
#endif

namespace extras {

/// Returns the events of the days from the first to the last argument, ordered by day and time.
using EventsBetween = std::function<std::vector<CalendarEvent>(std::chrono::sys_days first,
                                                               std::chrono::sys_days last)>;

} // namespace extras
