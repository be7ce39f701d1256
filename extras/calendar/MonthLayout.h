#pragma once

#include <chrono>
#include <optional>

namespace extras {

/// A month as a grid of six weeks, which every month fits into. The cells before the first and
/// after the last day of the month contain the neighbouring months' days. A regular value.
class MonthLayout {
  public:
    static constexpr int kColumns = 7;
    static constexpr int kRows = 6;
    static constexpr int kCells = kColumns * kRows;

    MonthLayout(std::chrono::year_month month, std::chrono::weekday firstWeekday);

    std::chrono::year_month month() const { return month_; }
    /// Returns the days in the first and the last cell.
    std::chrono::sys_days first() const { return first_; }
    std::chrono::sys_days last() const { return day(kCells - 1); }
    /// Returns the day in a cell, from 0 to kCells - 1, row by row.
    std::chrono::sys_days day(int cell) const { return first_ + std::chrono::days(cell); }
    /// Returns the cell of @p day, or std::nullopt if the grid does not contain it.
    std::optional<int> cellOf(std::chrono::sys_days day) const;
    /// Returns whether @p day is in the month rather than in a neighbouring one.
    bool isInMonth(std::chrono::sys_days day) const;

  private:
    std::chrono::year_month month_;
    std::chrono::sys_days first_;
};

/// Returns the month of @p day.
std::chrono::year_month monthOf(std::chrono::sys_days day);

} // namespace extras
