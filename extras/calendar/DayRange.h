#pragma once

#include "extras/calendar/WeekRules.h"

#include <chrono>

namespace extras {

/// The days from first to last, both included. A regular value.
struct DayRange {
    std::chrono::sys_days first;
    std::chrono::sys_days last; ///< not before first

    /// Returns the range between two days in any order.
    static DayRange between(std::chrono::sys_days one, std::chrono::sys_days other);

    int days() const { return static_cast<int>((last - first).count()) + 1; }
    bool contains(std::chrono::sys_days day) const { return first <= day && day <= last; }
    /// Returns the number of days that are not on a weekend.
    int workingDays(const WeekRules& rules) const;

    friend bool operator==(const DayRange&, const DayRange&) = default;
};

} // namespace extras
