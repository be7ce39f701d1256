#pragma once

#include "platform/values/PropertyList.h"

#include <cstddef>
#include <optional>
#include <string>

namespace paths {

/// A place on the earth.
struct Coordinates {
    double latitude = 0;  ///< degrees from -90 to 90, north is positive
    double longitude = 0; ///< degrees from -180 to 180, east is positive
    friend bool operator==(const Coordinates&, const Coordinates&) = default;
};

/// A record of the location list (see HalvexFilePaths). Elements that are missing or have another
/// type read as empty. Setters change one element, and keep all others, including unknown ones. A
/// regular value. Nothing is logged.
class WorldLocation {
  public:
    /// Accepts any value. One that is not an array is a record without elements.
    explicit WorldLocation(platform::PropertyList record);

    /// Returns the record, to be stored in the list.
    const platform::PropertyList& record() const { return record_; }
    platform::PropertyList& record() { return record_; }

    // Elements 0 to 4 identify the location, so they cannot be set.

    std::string city() const;
    std::string country() const;
    /// Returns the name of its time zone in the tz database, such as "Europe/Paris". The zone may
    /// not exist.
    std::string zoneName() const;
    /// Returns std::nullopt if the latitude or the longitude is missing or out of range.
    std::optional<Coordinates> coordinates() const;
    /// Returns the country code of two letters.
    std::string countryCode() const;

    /// Returns the name that the user has chosen, otherwise the city.
    std::string displayName() const;
    /// Sets the name to show; empty for the city.
    void setDisplayName(std::string name);

    /// Returns whether the clock shows the location in the bar.
    bool isInBar() const;
    void setInBar(bool inBar);
    /// Returns the clock format of the location in the bar. It may not be usable; empty for the
    /// default.
    std::string barFormat() const;
    void setBarFormat(std::string format);

    /// Returns whether the record comes from a subscription: whether it has more than 13 elements.
    bool isNet() const;

    /// Returns whether elements 0 to 4 are equal, which records of the same location have in
    /// common. False if a record has less than five elements.
    bool isSameLocation(const WorldLocation& other) const;

    friend bool operator==(const WorldLocation&, const WorldLocation&) = default;

  private:
    const platform::PropertyList* element(std::size_t index) const;
    std::string text(std::size_t index) const;
    void set(std::size_t index, platform::PropertyList value);

    platform::PropertyList record_;
};

} // namespace paths
