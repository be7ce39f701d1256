#pragma once

#include "paths/WorldLocation.h"

#include <cstdint>

/// Where the sun is, from the equations of NOAA's solar calculator, to within two minutes between
/// the years 1900 and 2100. The sun rises and sets when its upper edge is at a sea-level horizon
/// under average refraction: when its centre is 0.833 degrees below it. Instants are in seconds
/// since 1970-01-01 00:00:00 UTC. Thread-safe.
namespace extras::sun {

/// Returns whether the sun is up at @p instant.
bool isUp(const paths::Coordinates& place, std::int64_t instant);

enum class Course {
    RisesAndSets,
    UpAllDay,   ///< polar day
    DownAllDay, ///< polar night
};

struct Day {
    Course course = Course::RisesAndSets;
    std::int64_t sunrise = 0; ///< only if it rises and sets
    std::int64_t sunset = 0;  ///< the same
};

/// Returns the course of the sun on the day around a local noon: the sunrise before, and the sunset
/// after the sun is highest. @p noon is 12:00 on the clocks of the place; they may differ from the
/// sun by up to 12 hours.
Day dayAround(const paths::Coordinates& place, std::int64_t noon);

} // namespace extras::sun
