#pragma once

#include "extras/calendar/DayRange.h"

#include <chrono>

namespace extras {

/// Which month a calendar shows and which days are selected: one, or a range. Days are limited to
/// the years 1 to 9999. A regular value.
class CalendarSelection {
  public:
    /// What happens to the start of the selection.
    enum class Mode {
        Move,   ///< the new day is selected alone
        Extend, ///< the days between the start of the selection and the new day are selected
    };

    /// Selects @p today and shows its month. @p visibleMonths are shown side by side.
    explicit CalendarSelection(std::chrono::sys_days today, int visibleMonths = 1);

    /// Returns the first visible month.
    std::chrono::year_month month() const { return month_; }
    /// Returns the day that keys move.
    std::chrono::sys_days day() const { return day_; }
    DayRange range() const { return DayRange::between(start_, day_); }
    bool isRange() const { return start_ != day_; }

    /// Selects a day without changing the visible months.
    void select(std::chrono::sys_days day, Mode mode = Mode::Move);
    /// Selects a day and shows its month, unless it is visible.
    void goTo(std::chrono::sys_days day, Mode mode = Mode::Move);
    /// Shows other months without changing the selection.
    void scrollByMonths(int months);
    /// Moves the selected day by @p months, to the last day of the month if that is shorter, and
    /// the visible months with it. A range becomes a single day.
    void moveByMonths(int months);

    friend bool operator==(const CalendarSelection&, const CalendarSelection&) = default;

  private:
    std::chrono::year_month month_;
    std::chrono::sys_days start_;
    std::chrono::sys_days day_;
    int visibleMonths_;
};

} // namespace extras
