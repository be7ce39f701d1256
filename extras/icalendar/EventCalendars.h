#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Watch.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace extras {

/// An event on one day. An event of several days is one of these for each of them.
struct CalendarEvent {
    std::string title;    ///< one line of UTF-8 without control characters, possibly empty
    std::string calendar; ///< the name that the calendar has, or else that of its file
    std::chrono::sys_days day;
    /// When it starts, in the system's time zone: minutes since midnight. std::nullopt if it lasts
    /// all day or started on an earlier day.
    std::optional<int> minuteOfDay;
    bool isHoliday = false;
    friend bool operator==(const CalendarEvent&, const CalendarEvent&) = default;
};

/// The events of all iCalendar files ("*.ics") in a folder. Main thread only.
class EventCalendars : platform::NonCopyable {
  public:
    /// Reads nothing yet. @p folder need not exist.
    explicit EventCalendars(std::string folder);
    ~EventCalendars();

    /// Returns the events of the days from @p first to @p last, ordered by day. On each day, events
    /// without a time come first, holidays before others; those with a time follow. Reads the files
    /// that are new or have changed since the last call. A file that cannot be read, or not
    /// completely, is logged once until it changes; so are rules for repetition that are not
    /// supported, for which only the first event is returned.
    std::vector<CalendarEvent> between(std::chrono::sys_days first, std::chrono::sys_days last);

    /// Returns the names of the files that could not be read, or not completely, when between was
    /// last called. Sorted.
    std::vector<std::string> brokenFiles() const;

    /// Calls @p handler on the main thread after a file in the folder has been added, changed or
    /// removed, and after the system's time zone has changed. A change of a file that a link in the
    /// folder leads to is not reported. Reads nothing. After a burst of changes, calls it at least
    /// once. Returns null and logs the reason if the system is out of watches.
    std::unique_ptr<platform::Watch> onChange(std::function<void()> handler);

  private:
    struct State;
    std::unique_ptr<State> state_;
};

} // namespace extras
