#include "extras/shared/Sun.h"

#include <gtest/gtest.h>

#include <cstdlib>

using namespace extras::sun;

namespace {

constexpr paths::Coordinates kTromso{69.65, 18.95};
constexpr paths::Coordinates kMcMurdo{-77.85, 166.67};
constexpr std::int64_t kJune = 1782043200;     // 2026-06-21 12:00 UTC
constexpr std::int64_t kDecember = 1797854400; // 2026-12-21 12:00 UTC

/// The times are from the planetary theory VSOP87, for a horizon of -0.833 degrees. They agree with
/// the published ones, which are rounded to minutes.
TEST(Sun, RisesAndSetsWithinSecondsOfTheAlmanac) {
    struct Case {
        const char* day;
        paths::Coordinates place;
        std::int64_t noon, sunrise, sunset;
    };
    for (const auto& [day, place, noon, sunrise, sunset] :
         {Case{"London 2024-06-20, 04:43 to 21:21",
               {51.5074, -0.1278},
               1718881200,
               1718854980,
               1718914887},
          {"London 2024-12-21, 08:04 to 15:54",
           {51.5074, -0.1278},
           1734782400,
           1734768240,
           1734796417},
          {"New York 2024-11-03, 06:29 to 16:49, the day on which summer time ends",
           {40.7128, -74.006},
           1730653200,
           1730633361,
           1730670558},
          {"Sydney 2024-12-21, 05:41 to 20:06",
           {-33.8688, 151.2093},
           1734742800,
           1734720052,
           1734771938},
          {"Quito 2024-03-20, 06:18 to 18:24",
           {-0.1807, -78.4678},
           1710954000,
           1710933472,
           1710977061},
          {"Reykjavik 2024-06-20, 02:55 to 00:04 on the next day",
           {64.1466, -21.9426},
           1718884800,
           1718852108,
           1718928233},
          {"Kiritimati 2026-11-22, 06:14 to 18:16, at UTC+14",
           {1.8667, -157.3333},
           1795298400,
           1795277665,
           1795320970},
          {"Kashgar 1900-02-28, 09:32 to 20:47, three hours behind its clocks",
           {39.47, 75.99},
           -2203963200,
           -2203972096,
           -2203931607},
          {"Longyearbyen 2100-03-01, 08:26 to 15:56",
           {78.22, 15.65},
           4107582000,
           4107569180,
           4107596139}}) {
        const Day found = dayAround(place, noon);
        EXPECT_EQ(found.course, Course::RisesAndSets) << day;
        EXPECT_LT(std::abs(found.sunrise - sunrise), 10) << day;
        EXPECT_LT(std::abs(found.sunset - sunset), 10) << day;
        EXPECT_FALSE(isUp(place, sunrise - 120)) << day;
        EXPECT_TRUE(isUp(place, sunrise + 120)) << day;
        EXPECT_TRUE(isUp(place, sunset - 120)) << day;
        EXPECT_FALSE(isUp(place, sunset + 120)) << day;
    }
}

TEST(Sun, NeitherRisesNorSetsInPolarDayAndNight) {
    constexpr paths::Coordinates kNorthPole{90, 0};
    constexpr paths::Coordinates kSouthPole{-90, 180};
    for (const auto& place : {kTromso, kNorthPole}) {
        EXPECT_EQ(dayAround(place, kJune).course, Course::UpAllDay) << place.latitude;
        EXPECT_EQ(dayAround(place, kDecember).course, Course::DownAllDay) << place.latitude;
        EXPECT_TRUE(isUp(place, kJune + 43200)) << place.latitude;
        EXPECT_FALSE(isUp(place, kDecember)) << place.latitude;
    }
    for (const auto& place : {kMcMurdo, kSouthPole}) {
        EXPECT_EQ(dayAround(place, kJune).course, Course::DownAllDay) << place.latitude;
        EXPECT_EQ(dayAround(place, kDecember).course, Course::UpAllDay) << place.latitude;
    }
}

} // namespace
