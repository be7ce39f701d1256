#include "extras/clock/WorldClocks.h"
#include "extras/clock/LocationEditing.h"
#include "tests/extras/ShippedClock.h"

#include <gmock/gmock.h>

using namespace extras;
using testing::ElementsAre;

namespace {

constexpr const char* kParis = "CET-1CEST,M3.5.0,M10.5.0/3";
constexpr const char* kNewYork = "EST5EDT,M3.2.0,M11.1.0";

class WorldTimes : public testing::Test {
  protected:
    WorldTimes() {
        for (const auto& [name, rules] : {std::pair("Paris", kParis),
                                          {"New York", kNewYork},
                                          {"Kathmandu", "<+0545>-5:45"},
                                          {"Adelaide", "ACST-9:30ACDT,M10.1.0,M4.1.0/3"},
                                          {"Kiritimati", "<+14>-14"},
                                          {"Honolulu", "HST10"},
                                          {"London", "GMT0BST,M3.5.0/1,M10.5.0"}})
            zones.add(name, rules);
    }
    /// Returns the time, the offset from the local time and day or night.
    std::string at(const std::string& zone, std::int64_t instant) const {
        const auto time = worldTime({.name = zone, .zoneName = zone}, instant);
        return time ? timeWithDay(*time) + ", " + offsetText(time->secondsAhead) : "none";
    }

    test::ScopedEnvironment language{"LC_ALL", "C"};
    halvextest::ManualTimeZones zones;
};

TEST_F(WorldTimes, FollowTheRulesOfBothZones) {
    struct Case {
        const char* what;
        const char* local;
        const char* place;
        std::int64_t instant;
        const char* text;
    };
    for (const auto& [what, local, place, instant, text] :
         {Case{"summer", "Paris", "London", 1782043200, "13:00, −1 h"},
          {"quarter of an hour", "Paris", "Kathmandu", 1782043200, "17:45, +3:45 h"},
          {"half an hour", "Paris", "Adelaide", 1782043200, "21:30, +7:30 h"},
          {"the same", "Paris", "Paris", 1782043200, "14:00, ±0 h"},
          {"a day ahead", "Honolulu", "Kiritimati", 1782043200, "02:00 +1, +24 h"},
          {"a day behind", "Kiritimati", "Honolulu", 1782043200, "02:00 −1, −24 h"},
          {"half an hour behind", "Kathmandu", "London", 1782043200, "13:00, −4:45 h"},
          // 2026-03-08 07:00 UTC: New York changes three weeks before Paris.
          {"before spring in New York", "Paris", "New York", 1772953199, "01:59, −6 h"},
          {"after spring in New York", "Paris", "New York", 1772953200, "03:00, −5 h"},
          // 2026-03-29 01:00 UTC
          {"before spring in Paris", "Paris", "New York", 1774745999, "20:59 −1, −5 h"},
          {"after spring in Paris", "Paris", "New York", 1774746000, "21:00 −1, −6 h"},
          // 2026-10-25 01:00 UTC and 2026-11-01 06:00 UTC
          {"before autumn in Paris", "New York", "Paris", 1792889999, "02:59 +1, +6 h"},
          {"after autumn in Paris", "New York", "Paris", 1792890000, "02:00 +1, +5 h"},
          {"before autumn in New York", "Paris", "New York", 1793512799, "01:59, −5 h"},
          {"after autumn in New York", "Paris", "New York", 1793512800, "01:00, −6 h"},
          // Midnight in London and Paris
          {"23:59:59", "London", "Paris", 1767221999, "23:59, +1 h"},
          {"midnight there", "London", "Paris", 1767222000, "00:00 +1, +1 h"},
          {"midnight here", "London", "Paris", 1767225600, "01:00, +1 h"},
          // 2028-02-28 and 2100-02-28 at 23:30 in London
          {"the end of February in a leap year", "London", "Paris", 1835393400, "00:30 +1, +1 h"},
          {"the end of February in 2100", "London", "Paris", 4107540600, "00:30 +1, +1 h"},
          {"no such zone", "Paris", "Atlantis", 1782043200, "none"},
          {"no zone", "Paris", "", 1782043200, "none"}}) {
        zones.setLocal(local);
        EXPECT_EQ(at(place, instant), text) << what;
    }
}

TEST_F(WorldTimes, AreByDayOrNightIfTheCoordinatesAreKnown) {
    WorldClock paris{.name = "Paris", .zoneName = "Paris"};
    EXPECT_EQ(worldTime(paris, 1782043200)->isDay, std::nullopt);
    paris.coordinates = {48.87, 2.33};
    EXPECT_EQ(worldTime(paris, 1782043200)->isDay, true);
    EXPECT_EQ(worldTime(paris, 1782043200 + 43200)->isDay, false);
}

/// The list in the files of the user, whose default has the city "Default".
class LocationFiles : public testing::Test {
  protected:
    LocationFiles() {
        platform::expat::install();
        folder.write("Library/PreferencePanes/Halvex Pro.prefPane/Contents/Info.plist",
                     "<plist><dict/></plist>");
        folder.write("Library/PreferencePanes/Halvex Pro.prefPane/Contents/Resources/"
                     "LocationsConfig.plist",
                     "<plist><array>" + record("Default") + "</array></plist>");
    }
    static std::string record(const std::string& city, const std::string& rest = "") {
        return "<array><string>" + city +
               "</string><string>C</string><string>UTC</string><real>1</real><real>2</real>" +
               rest + "</array>";
    }
    void write(const std::string& records, const char* name = "Halvex Locations") {
        folder.write(kProductFolder + name, "<plist><array>" + records + "</array></plist>");
    }
    static std::vector<std::string> names(WorldClocks& clocks) {
        std::vector<std::string> names;
        for (const WorldClock& clock : clocks.list())
            names.push_back(clock.name);
        return names;
    }
    std::vector<std::string> names() {
        WorldClocks clocks;
        return names(clocks);
    }

    const std::string kProductFolder = "Library/Application Support/Quorvane Software/Halvex Pro/";
    test::TemporaryFolder folder;
    test::ScopedEnvironment home{"HOME", folder.path().string()};
    test::RecordingLog log;
    test::PollingMainThread loop;
};

const std::string kNet = "<string/><string/><string/><string/><string/><string/><string/><string/>"
                         "<true/>";

TEST_F(LocationFiles, ContainWhatTheUserHasChosen) {
    EXPECT_FALSE(WorldClocks::exist());
    EXPECT_THAT(names(), ElementsAre()) << "not the default list";

    write(record("Subscribed", kNet), "Halvex Net Locations.plist");
    EXPECT_TRUE(WorldClocks::exist());
    EXPECT_THAT(names(), ElementsAre("Subscribed"));

    write(record("Oslo") + "<string>?</string>" + record("") +
          record("Rome", "<string>IT</string><string>Office</string><true/><string> </string>"));
    EXPECT_THAT(names(), ElementsAre("Oslo", "Office", "Subscribed"));
    EXPECT_TRUE(log.contains("cannot use the clock format of Office in the bar"));

    folder.write(kProductFolder + "Halvex Locations", "<plist><dict/></plist>");
    WorldClocks clocks;
    EXPECT_THAT(names(clocks), ElementsAre("Subscribed"));
    EXPECT_EQ(clocks.error(), "not a list");
    EXPECT_TRUE(log.contains("cannot read the locations in "));
}

TEST_F(LocationFiles, AreFoundAtTheirFormerPaths) {
    for (const char* path :
         {"Library/Halvex Locations", "Library/Application Support/Halvex Locations"}) {
        std::filesystem::create_directories(folder.file("Library/Application Support"));
        folder.write(path, "<plist><array>" + record(path) + "</array></plist>");
        EXPECT_TRUE(WorldClocks::exist()) << path;
        EXPECT_THAT(names(), ElementsAre(path));
        std::filesystem::remove_all(folder.file("Library/Application Support"));
    }
}

TEST_F(LocationFiles, AreReadAgainAfterTheyHaveChanged) {
    int changes = 0;
    WorldClocks clocks([&] { ++changes; });
    clocks.watchFiles();
    for (const char* city : {"Oslo", "Rome"}) {
        changes = 0;
        write(record(city));
        EXPECT_TRUE(loop.runUntil([&] { return changes > 0; }, std::chrono::seconds(5)));
        EXPECT_THAT(names(clocks), ElementsAre(city));
    }
    std::size_t logged = 0;
    for (const char* text : {"broken", "broken", "<plist><array/></plist>"}) {
        changes = 0;
        folder.write(kProductFolder + "Halvex Locations", text);
        EXPECT_TRUE(loop.runUntil([&] { return changes > 0; }, std::chrono::seconds(5)));
        EXPECT_THAT(names(clocks), ElementsAre());
        for (const std::string& line : log.take())
            logged += line.starts_with("cannot read the locations in ") ? 1 : 0;
    }
    EXPECT_EQ(logged, 1U) << "once, and not after it has been repaired";
}

TEST_F(LocationFiles, ChangeOneRecordAndKeepTheRest) {
    using paths::WorldLocation;
    const auto known = locations::knownLocations();
    ASSERT_EQ(known.size(), 1U);
    EXPECT_TRUE(locations::add(known[0]));
    EXPECT_THAT(names(), ElementsAre("Default")) << "the first one creates the list";

    const std::string odd = "<string>?</string>";
    write(odd + record("Oslo", "<string>NO</string>") + record("Rome"));
    EXPECT_TRUE(locations::add(known[0]));
    EXPECT_FALSE(locations::add(known[0])) << "already in the list";
    WorldClocks clocks;
    ASSERT_THAT(names(clocks), ElementsAre("Oslo", "Rome", "Default"));
    const std::vector<WorldLocation> before = clocks.records();

    WorldLocation oslo = before[0];
    oslo.setInBar(true);
    EXPECT_TRUE(locations::replace(before[0], oslo));
    EXPECT_FALSE(locations::replace(before[0], oslo)) << "has changed";
    EXPECT_TRUE(locations::remove(before[1]));
    EXPECT_FALSE(locations::remove(before[1])) << "has been removed";
    EXPECT_EQ(locations::chosenRecords(),
              (platform::PropertyList::Array{"?", oslo.record(), known[0].record()}));

    folder.write(kProductFolder + "Halvex Locations", "broken");
    EXPECT_FALSE(locations::add(before[1]));
    EXPECT_EQ(test::contents(folder.file(kProductFolder + "Halvex Locations")), "broken");
}

} // namespace
