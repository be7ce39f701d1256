#include "paths/WorldLocation.h"

#include <gtest/gtest.h>

#include <limits>

using paths::Coordinates;
using paths::WorldLocation;
using platform::PropertyList;
using Array = PropertyList::Array;

namespace {

Array oslo() {
    return {"Oslo", "Norway", "Europe/Oslo", 59.9167, 10.75};
}

TEST(WorldLocation, ReadsItsElements) {
    Array record = oslo();
    for (const PropertyList& value : Array{"NO", "Work", true, "%H"})
        record.push_back(value);
    const WorldLocation location{PropertyList(record)};
    EXPECT_EQ(location.city(), "Oslo");
    EXPECT_EQ(location.country(), "Norway");
    EXPECT_EQ(location.zoneName(), "Europe/Oslo");
    EXPECT_EQ(location.coordinates(), (Coordinates{59.9167, 10.75}));
    EXPECT_EQ(location.countryCode(), "NO");
    EXPECT_EQ(location.displayName(), "Work");
    EXPECT_TRUE(location.isInBar());
    EXPECT_EQ(location.barFormat(), "%H");
}

TEST(WorldLocation, ReadsMissingAndWrongElementsAsEmpty) {
    const Array wrong(14, PropertyList(Array()));
    for (const PropertyList& record : {PropertyList("text"), PropertyList(Array()),
                                       PropertyList(wrong), PropertyList(Array(13, ""))}) {
        const WorldLocation location(record);
        EXPECT_EQ(location.displayName() + location.country() + location.zoneName() +
                      location.countryCode() + location.barFormat(),
                  "");
        EXPECT_EQ(location.coordinates(), std::nullopt);
        EXPECT_FALSE(location.isInBar());
    }
    EXPECT_EQ(WorldLocation(PropertyList(oslo())).displayName(), "Oslo");
}

TEST(WorldLocation, HasCoordinatesOnTheEarthOnly) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const auto& [latitude, longitude, isValid] :
         {std::tuple<PropertyList, PropertyList, bool>{-90, 180.0, true},
          {90.0, -180, true},
          {90.1, 0, false},
          {0, -180.1, false},
          {nan, 0, false},
          {0, nan, false},
          {"0", 0, false}}) {
        Array record = oslo();
        record[3] = latitude;
        record[4] = longitude;
        EXPECT_EQ(WorldLocation(PropertyList(record)).coordinates().has_value(), isValid);
    }
}

TEST(WorldLocation, ChangesOneElementAndKeepsTheOthers) {
    WorldLocation location{PropertyList(oslo())};
    location.setInBar(true);
    Array expected = oslo();
    expected.insert(expected.end(), {"", "", true});
    EXPECT_EQ(location.record(), PropertyList(expected));

    Array net(15, "kept");
    location = WorldLocation{PropertyList(net)};
    EXPECT_TRUE(location.isNet());
    location.setDisplayName("Name");
    location.setBarFormat("%H");
    net[6] = "Name";
    net[8] = "%H";
    EXPECT_EQ(location.record(), PropertyList(net));
    EXPECT_FALSE(WorldLocation(PropertyList(Array(13, ""))).isNet());
}

TEST(WorldLocation, IsTheSameIfItsFirstFiveElementsAre) {
    const WorldLocation first{PropertyList(oslo())};
    WorldLocation named = first;
    named.setDisplayName("Work");
    EXPECT_TRUE(first.isSameLocation(named));
    for (std::size_t i = 0; i < 5; ++i) {
        Array other = oslo();
        other[i] = "other";
        EXPECT_FALSE(first.isSameLocation(WorldLocation{PropertyList(other)})) << i;
    }
    const WorldLocation empty{PropertyList(Array())};
    EXPECT_FALSE(empty.isSameLocation(empty));
}

} // namespace
