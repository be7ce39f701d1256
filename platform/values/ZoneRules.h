#pragma once

#include "platform/values/CivilTime.h"

#include <cstdint>
#include <ctime>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

struct ZoneTable;

/// What a time zone's clocks show for some time, in relation to UTC.
struct ZoneOffset {
    std::int32_t secondsFromUTC = 0; ///< positive east of Greenwich
    bool isDaylightSaving = false;
    std::string abbreviation; ///< such as "CET"
    friend bool operator==(const ZoneOffset&, const ZoneOffset&) = default;
};

/// A change of the offset, of daylight saving or of the abbreviation.
struct ZoneTransition {
    std::int64_t instant = 0; ///< the first second with the new offset
    ZoneOffset before;
    ZoneOffset after;
};

/// The instants at which a zone's clocks show a local time.
struct LocalInstants {
    enum class Kind {
        Unique,   ///< once
        Repeated, ///< more than once, because the clocks are set back
        Skipped,  ///< never, because the clocks are set forward
    };
    Kind kind = Kind::Unique;
    std::int64_t first = 0; ///< if skipped, the transition that skips the local time
    std::int64_t last = 0;  ///< equals @p first unless the time is repeated
};

/// The rules of a time zone: an immutable value that is cheap to copy. Instants are in seconds
/// since 1970-01-01 00:00:00 UTC; those of the zones in "right/" count leap seconds, like the C
/// library's. Operations throw nothing but std::bad_alloc. Thread-safe.
class ZoneRules {
  public:
    /// UTC.
    ZoneRules();
    /// Used by the readers of zones.
    explicit ZoneRules(std::shared_ptr<const ZoneTable> table);

    /// Parses rules in the format of the environment variable TZ:
    /// "CET-1CEST,M3.5.0,M10.5.0/3", "<-03>3", "EST5EDT". Offsets in it are positive west of
    /// Greenwich. Rules for daylight saving default to those of the United States since 2007.
    /// Returns std::nullopt if @p text is malformed.
    static std::optional<ZoneRules> parse(std::string_view text);

    ZoneOffset offsetAt(std::int64_t instant) const;
    /// Returns the local date and time at @p instant.
    CivilTime localTime(std::int64_t instant) const;
    /// Returns the same with all fields of std::tm, for std::strftime. The result's tm_zone stays
    /// valid as long as a copy of these rules exists. Returns std::nullopt if the year does not
    /// fit.
    std::optional<std::tm> brokenDownTime(std::int64_t instant) const;

    /// Returns the first transition after @p instant, or std::nullopt after the last one.
    std::optional<ZoneTransition> nextTransition(std::int64_t instant) const;
    /// Returns the last transition at or before @p instant, or std::nullopt before the first one.
    std::optional<ZoneTransition> previousTransition(std::int64_t instant) const;

    /// Returns when the clocks show @p local, whose fields may be out of range (see
    /// secondsSince1970). If clocks skip it, returns the transition: for 02:30, the instant at
    /// which they change from 02:00 to 03:00. Returns std::nullopt if the instant does not fit in
    /// 64 bits.
    std::optional<LocalInstants> instantsOf(const CivilTime& local) const;

  private:
    std::optional<ZoneTransition> transitionAt(std::optional<std::int64_t> time) const;

    std::shared_ptr<const ZoneTable> table_;
};

} // namespace platform
