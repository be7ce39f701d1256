#pragma once

#include "extras/HalvexTimeMenu/ClockView.h"
#include "extras/clock/WorldClocks.h"

#include <cstdint>
#include <string>
#include <vector>

/// What the clock shows in the bar: the local time or UTC, and the locations marked for the bar.
/// Main thread only.
class ClockTitle {
  public:
    /// At most so many locations are shown.
    static constexpr std::size_t kMostLocations = 12;

    std::string format;     ///< usable and expanded
    std::string dateFormat; ///< usable; for the first of two lines, or empty for one line
    bool showsUTC = false;  ///< instead of the local time

    /// Sets the locations to show: those of @p clocks that are in the bar.
    void setLocations(const std::vector<extras::WorldClock>& clocks);

    bool hasTwoLines() const { return !dateFormat.empty(); }
    bool showsSeconds() const;

    /// Returns the local time or UTC without the locations, on one line.
    std::string timeText(std::int64_t now) const;
    /// Returns the title on one line.
    std::string text(std::int64_t now) const;
    /// Returns the title on two lines, the local time first, from left to right. In languages that
    /// are written from right to left, the local time is last.
    std::vector<TitleColumn> columns(std::int64_t now) const;

  private:
    TitleColumn timeColumn(std::int64_t now) const;

    std::vector<extras::WorldClock> locations_;
};
