#pragma once

#include "platform/values/ZoneRules.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace warnings {

/// When a warning rings: "every hour", "every day at 17:30", "at 17:30" or "in 20 minutes". Times
/// of day are local, so they follow the system's time zone. A regular value.
struct WarningTime {
    enum class Kind {
        EveryHour, ///< on each full hour of the local clocks
        EveryDay,  ///< every day at a time of day
        Once,      ///< the next time the clocks show a time of day
        Delay,     ///< some minutes after the warning was set
    };
    Kind kind = Kind::EveryHour;
    int minutes = 0; ///< after midnight, or of the delay; 0 for every hour

    /// Parses one of the texts above, in any case and with any spaces. The delay can be in hours
    /// ("in 2 h") and is at most a week; a time of day can be in twelve-hour form ("at 5:30 pm",
    /// "at 5 pm"). "in" and "at" may be missing: "20" is a delay in minutes, "17:30" a time of day.
    /// Returns std::nullopt for any other text.
    static std::optional<WarningTime> parse(std::string_view text);

    /// Returns the text in the form that is stored, which parse() accepts.
    std::string text() const;
    bool isRecurring() const { return kind == Kind::EveryHour || kind == Kind::EveryDay; }

    friend bool operator==(const WarningTime&, const WarningTime&) = default;
};

/// Returns the first instant after @p since at which a warning rings. Both are in seconds since
/// 1970-01-01 00:00:00 UTC; @p rules are those of the local time zone. A time of day that the
/// clocks skip is when they skip it; one that they repeat is the first. Returns std::nullopt if the
/// instant does not fit in 64 bits.
std::optional<std::int64_t> nextOccurrence(const WarningTime& time, std::int64_t since,
                                           const platform::ZoneRules& rules);

/// The instants in some interval at which a warning rings.
struct Occurrences {
    std::int64_t first = 0;
    std::int64_t last = 0;
    int count = 0;
};

/// Returns the occurrences after @p since and until @p now, or std::nullopt if there are none.
/// Ignores those of a recurring warning that are more than 30 days before @p now.
std::optional<Occurrences> occurrencesUntil(const WarningTime& time, std::int64_t since,
                                            std::int64_t now, const platform::ZoneRules& rules);

} // namespace warnings
