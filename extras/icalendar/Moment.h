#pragma once

#include "extras/icalendar/ContentLines.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace extras::icalendar {

/// A day, or a time that the clocks of a zone show.
struct Moment {
    static constexpr std::int32_t kNoTime = -1;

    std::chrono::sys_days day;
    std::int32_t second = kNoTime; ///< since midnight
    std::uint32_t zone = 0;        ///< an index of Zones::names

    bool hasTime() const { return second != kNoTime; }
    friend bool operator==(const Moment&, const Moment&) = default;
    friend bool operator<(const Moment& left, const Moment& right) {
        return std::tie(left.day, left.second, left.zone) <
               std::tie(right.day, right.second, right.zone);
    }
};

/// The time zones that a calendar refers to.
class Zones {
  public:
    static constexpr std::uint32_t kLocal = 0; ///< the system's zone
    static constexpr std::uint32_t kUTC = 1;

    /// Returns the index of a TZID. Of identifiers such as "/example.org/Europe/Berlin", only the
    /// name in the tz database counts. Returns kLocal if the calendar uses more than 100 zones.
    std::uint32_t indexOf(std::string_view identifier);

    /// Names in the tz database, which may be unknown; those of kLocal and kUTC are not used.
    const std::vector<std::string>& names() const { return names_; }

  private:
    std::vector<std::string> names_{"", "UTC"};
};

/// Parses a date or a date with a time: "20261123", "20261123T090000", "20261123T090000Z". A time
/// without a "Z" is in @p zone. Returns std::nullopt for anything else. A leap second is returned
/// as the second before it.
std::optional<Moment> parseMoment(std::string_view text, std::uint32_t zone);

/// Parses the first value of a property such as DTSTART, whose zone is its parameter TZID.
std::optional<Moment> parseMoment(const Property& property, Zones& zones);

/// Parses a duration such as "P1DT2H" or "P2W". Returns seconds, or std::nullopt if it is
/// malformed, negative or longer than 10,000 years.
std::optional<std::int64_t> parseDuration(std::string_view text);

/// Returns the time that clocks show @p seconds later. If @p moment has no time, returns the day of
/// that time.
Moment later(const Moment& moment, std::int64_t seconds);

} // namespace extras::icalendar
