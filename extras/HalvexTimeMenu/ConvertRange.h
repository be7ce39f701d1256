#pragma once

#include "extras/HalvexTimeMenu/ConvertTime.h"
#include "platform/values/ZoneRules.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

/// Today and tomorrow in a time zone, in steps of a quarter of an hour: usually 48 hours, and 47 or
/// 49 if the clocks change meanwhile. Instants are in seconds since 1970-01-01 00:00:00 UTC. A
/// regular value.
class ConvertRange {
  public:
    /// The days that begin with the one of @p now in @p local.
    ConvertRange(platform::ZoneRules local, std::int64_t now);

    std::int64_t start() const { return start_; }
    std::int64_t end() const { return end_; }
    int steps() const;
    /// Returns the instant of a step, from 0 (the start) to steps() (the end).
    std::int64_t instantAt(int step) const;
    /// Returns the step that is nearest to @p instant.
    int stepAt(std::int64_t instant) const;

    /// Returns the next step after @p instant, or the one before it if @p direction is negative.
    int stepBeside(std::int64_t instant, int direction) const;

    /// Returns when the clocks of @p zone show @p time: on the day that they show at @p current or,
    /// if that is outside of the range, on the day before or after. Of a repeated time, returns the
    /// first. Returns std::nullopt if the clocks skip the time.
    std::optional<std::int64_t> instantOf(TimeOfDay time, const platform::ZoneRules& zone,
                                          std::int64_t current) const;

    /// A mark on the scale at a full hour.
    struct Mark {
        int step = 0;
        double place = 0; ///< from 0 at the start to 1 at the end
        int hour = 0;     ///< local
    };
    /// Returns the marks for the local hours that are multiples of @p hours.
    std::vector<Mark> marks(int hours) const;
    /// Returns the instant in the middle of each local day.
    std::vector<std::int64_t> middles() const;
    double placeOf(std::int64_t instant) const;

  private:
    platform::ZoneRules local_;
    std::int64_t start_ = 0;
    std::int64_t middle_ = 0; ///< the midnight between the two days
    std::int64_t end_ = 0;
};
