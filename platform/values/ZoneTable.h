#pragma once

#include "platform/values/RecurringRules.h"
#include "platform/values/ZoneRules.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace platform {

/// The data of ZoneRules, as they are in a compiled file of the tz database.
struct ZoneTable {
    struct Transition {
        std::int64_t time; ///< in seconds since 1970 without leap seconds
        std::size_t offset;
    };
    struct LeapSecond {
        std::int64_t instant;    ///< of the inserted second
        std::int64_t correction; ///< the number of leap seconds from then on
    };

    std::vector<ZoneOffset> offsets{{0, false, "UTC"}}; ///< the first precedes all transitions
    std::vector<Transition> transitions;                ///< ascending
    std::vector<LeapSecond> leapSeconds;                ///< ascending; only in "right/"
    std::optional<RecurringRules> recurring;            ///< after the last transition

    const ZoneOffset& offsetAt(std::int64_t time) const;
    std::optional<std::int64_t> nextChange(std::int64_t time) const;
    std::optional<std::int64_t> previousChange(std::int64_t time) const;

    /// The conversions between instants, which count leap seconds, and times, which do not.
    std::int64_t timeOf(std::int64_t instant) const;
    std::int64_t instantOf(std::int64_t time) const;
    bool isLeapSecond(std::int64_t instant) const;

  private:
    /// Returns the index of the first transition after @p time.
    std::size_t upperBound(std::int64_t time) const;
    const ZoneOffset& offsetBefore(std::size_t transition) const;
    bool isChange(std::size_t transition) const;
    bool isRecurring(std::int64_t time) const;
};

} // namespace platform
