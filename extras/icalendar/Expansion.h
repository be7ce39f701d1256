#pragma once

#include "extras/icalendar/Calendar.h"
#include "extras/icalendar/EventCalendars.h"
#include "platform/TimeZones.h"

#include <chrono>
#include <cstdint>
#include <string>
#include <vector>

namespace extras::icalendar {

/// Finds the events of some days, in the time zone that is the system's when it is created.
class Expansion {
  public:
    /// @p first and @p last are years from 0 to 9999. @p maximum limits the number of events.
    Expansion(platform::TimeZones& zones, std::chrono::sys_days first, std::chrono::sys_days last,
              std::size_t maximum);

    /// Adds the events of @p calendar. Their name is @p name if the calendar has none.
    void add(Calendar& calendar, const std::string& name);

    /// Returns the events in the order of EventCalendars::between. Call it once.
    std::vector<CalendarEvent> take();

    /// Returns whether there are more events than the maximum.
    bool isIncomplete() const { return isIncomplete_; }

  private:
    void add(Event& event);
    void addRepetitions(Event& event, std::chrono::sys_days from, std::chrono::sys_days to);
    void addRuleDays(RecurrenceRule& rule, const Event& event, std::chrono::sys_days from,
                     std::chrono::sys_days to);
    void removeExcluded(const std::vector<Moment>& excluded);
    void addAt(const Event& event, const Moment& start);
    void addDays(const Event& event, std::chrono::sys_days first, std::chrono::sys_days last,
                 std::optional<int> minuteOfDay);

    std::int64_t instantOf(const Moment& moment) const;
    Moment localMoment(std::int64_t instant, std::uint32_t zone) const;
    std::chrono::sys_days lastDayBefore(const Moment& until, const Moment& start) const;

    platform::TimeZones& zones_;
    const std::chrono::sys_days first_;
    const std::chrono::sys_days last_;
    const std::size_t maximum_;
    bool isIncomplete_ = false;
    std::vector<CalendarEvent> events_;

    // Of the calendar that is being added:
    std::string calendarName_;
    std::int64_t* countingSteps_ = nullptr;
    std::vector<platform::ZoneRules> rules_; ///< of its zones
    std::vector<Moment> starts_;             ///< of the event's repetitions
};

} // namespace extras::icalendar
