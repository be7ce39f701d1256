#pragma once

#include "extras/clock/WorldClocks.h"
#include "platform/values/ZoneRules.h"
#include "platform/widgets/ListBox.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// A place whose time the Convert panel shows: a location of the user's list or, without a clock,
/// the place of the local time.
struct ConvertPlace {
    std::string name;
    std::optional<extras::WorldClock> clock{};

    /// Returns the rules of its zone, or std::nullopt if the zone cannot be used.
    std::optional<platform::ZoneRules> zone() const;
};

/// Returns the local time, followed by @p clocks.
std::vector<ConvertPlace> convertPlaces(const std::vector<extras::WorldClock>& clocks);

/// The images for places where the sun is up or down.
struct DayImages {
    std::shared_ptr<platform::Image> day;
    std::shared_ptr<platform::Image> night;
    std::shared_ptr<platform::Image> unknown; ///< keeps the names in line
};

/// Returns how a list shows the time at a place: its name, the day difference and the time.
platform::ListRow convertRow(const ConvertPlace& place, std::int64_t instant,
                             const DayImages& images);

/// Returns the times at all places with a usable zone: "Paris 14:30, Tokyo 21:30 +1". The local
/// time comes first, unless a location has the same zone.
std::string convertedText(const std::vector<ConvertPlace>& places, std::int64_t instant);

/// Returns @p instant in a clock format, such as clock_format::time().
std::string zoneText(const std::string& format, const platform::ZoneRules& zone,
                     std::int64_t instant);
