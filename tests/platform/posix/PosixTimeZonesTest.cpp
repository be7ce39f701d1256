#include "platform/posix/PosixTimeZones.h"

#include "tests/support/PollingMainThread.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <filesystem>

using platform::ZoneRules;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

TEST(ZoneRules, AreParsedFromTextAndRefusedIfMalformed) {
    struct Row {
        const char* text;
        const char* january;
        std::vector<std::int64_t> transitions; ///< of 2027
    };
    for (const auto& [text, january, transitions] : std::vector<Row>{
             {"UTC0", "UTC", {}},
             {"<+0545>-5:45", "+0545", {}},
             {"CET-1CEST,M3.5.0,M10.5.0/3", "CET", {1806195600, 1824944400}},
             {"EST5EDT", "EST", {1805007600, 1825567200}},
             {"AEST-10AEDT,M10.1.0,M4.1.0/3", "AEDT", {1806768000, 1822492800}},
             {"IST-1GMT0,M10.5.0,M3.5.0/1", "GMT", {1806195600, 1824944400}},
             {"<-02>2<-01>,M3.5.0/-1,M10.5.0/0", "-02", {1806195600, 1824944400}},
             {"AAA0BBB,J59,J60", "AAA", {1803780000, 1803862800}},
             {"XXX3EDT4,0/0,J365/23", "EDT", {}},
             {"AAA0BBB0,M1.1.1/-167,M1.5.5/167", "BBB", {1801782000, 1829869200}},
         }) {
        const auto rules = ZoneRules::parse(text);
        ASSERT_TRUE(rules) << text;
        EXPECT_EQ(rules->offsetAt(1800014400).abbreviation, january) << text;
        std::vector<std::int64_t> found;
        for (auto next = rules->nextTransition(1798761599); next && next->instant < 1830297600;
             next = rules->nextTransition(next->instant))
            found.push_back(next->instant);
        EXPECT_EQ(found, transitions) << text;
    }
    for (const char* text : {"",
                             "A0",
                             "UTC",
                             "<UTC0",
                             "<+1>0",
                             "UTC25",
                             "UTC0:60",
                             "UTC0X",
                             "UTC0XXX,",
                             "UTC0XXX,M3.5.0",
                             "UTC0XXX,M13.1.0,M3.1.0",
                             "UTC0XXX,M1.6.0,M3.1.0",
                             "UTC0XXX,M1.0.0,M3.1.0",
                             "UTC0XXX,M1.1.7,M3.1.0",
                             "UTC0XXX,J0,J1",
                             "UTC0XXX,J366,J1",
                             "UTC0XXX,366,1",
                             "UTC0XXX,M1.1.1/168,J1",
                             "UTC0XXX,J1,J2,",
                             "UTC0XXX1X"})
        EXPECT_FALSE(ZoneRules::parse(text)) << text;
}

TEST(ZoneRules, WorkAtAnyInstant) {
    const auto rules = *ZoneRules::parse("CET-1CEST,M3.5.0,M10.5.0/3");
    for (const std::int64_t instant : {INT64_MIN, INT64_MIN + 1, INT64_MAX - 1, INT64_MAX}) {
        const auto next = rules.nextTransition(instant),
                   previous = rules.previousTransition(instant);
        EXPECT_EQ(next.has_value(), instant < 0);
        EXPECT_EQ(previous.has_value(), instant > 0);
        EXPECT_FALSE(rules.brokenDownTime(instant)) << "the year fits into an int";
        auto local = rules.localTime(instant);
        local.second -= rules.offsetAt(instant).secondsFromUTC;
        EXPECT_EQ(platform::secondsSince1970(local), instant);
        EXPECT_FALSE(rules.instantsOf({.year = instant}));
    }
    const auto tomorrow = rules.instantsOf({2027, 12, 32, 7, 30});
    EXPECT_EQ(tomorrow->first, 1830321000);
    EXPECT_EQ(platform::weekday({2026, 11, 23}), 1);
}

class PosixTimeZonesTest : public testing::Test {
  protected:
    static std::string utcFile() { return test::contents("/usr/share/zoneinfo/Etc/UTC"); }

    test::TemporaryFolder folder;
    test::ScopedEnvironment database{"TZDIR", folder.path().string()};
    test::ScopedEnvironment variable{"TZ", std::nullopt};
    test::RecordingLog log;
    test::PollingMainThread loop;
    platform::posix::PosixTimeZones zones{folder.file("localtime")};
};

TEST_F(PosixTimeZonesTest, ReadsAFileAgainWhenItHasChanged) {
    EXPECT_FALSE(zones.zone("Europe/Paris"));
    EXPECT_FALSE(zones.zone("Europe/Paris"));
    EXPECT_EQ(log.take().size(), 1U);
    const std::string paris = test::contents("/usr/share/zoneinfo/Europe/Paris");
    folder.write("Europe/Paris", paris);
    EXPECT_EQ(zones.zone("Europe/Paris")->offsetAt(1800014400).abbreviation, "CET");
    std::filesystem::rename(folder.write("new", utcFile()), folder.file("Europe/Paris"));
    EXPECT_EQ(zones.zone(folder.file("Europe/Paris"))->offsetAt(1800014400).abbreviation, "UTC");
    EXPECT_THAT(log.take(), IsEmpty());
    for (const char* name : {"", "..", "../localtime", "Europe/../Paris", "/etc/localtime", "a//b",
                             "Europe/", "Europe/Pa ris", "./Europe/Paris"}) {
        EXPECT_FALSE(zones.zone(name)) << name;
        EXPECT_FALSE(zones.zone(name)) << name;
        EXPECT_EQ(log.take().size(), 1U) << name;
    }
}

TEST_F(PosixTimeZonesTest, RefusesBadFilesWithOneLogLine) {
    const std::string good = test::contents("/usr/share/zoneinfo/right/Europe/Paris");
    const auto changed = [&](std::size_t from, std::string_view bytes) {
        return std::string(good).replace(from, bytes.size(), bytes);
    };
    const std::size_t second = good.find("TZif", 4);
    std::vector<std::string> bad{changed(0, "X"),
                                 changed(4, "1"),
                                 changed(second, "X"),
                                 changed(second + 36, std::string(4, '\xff')),
                                 changed(second + 36, std::string(4, '\0')),
                                 changed(second + 40, std::string(4, '\0')),
                                 changed(second + 60, std::string(8, '\x7f')),
                                 good.substr(0, good.size() - 1) + "!\n",
                                 good + std::string(300'000, ' ')};
    for (std::size_t size = 0; size < good.size(); size += 13)
        bad.push_back(good.substr(0, size));
    for (std::size_t i = 0; i < bad.size(); ++i) {
        const std::string name = "bad" + std::to_string(i);
        folder.write(name, bad[i]);
        EXPECT_FALSE(zones.zone(name)) << i;
        EXPECT_FALSE(zones.zone(name)) << i;
        EXPECT_EQ(log.take().size(), 1U) << i;
    }
    std::filesystem::create_directory(folder.file("folder"));
    EXPECT_FALSE(zones.zone("folder"));
}

TEST_F(PosixTimeZonesTest, KnowsTheLocalZoneAndItsChanges) {
    folder.write("zoneinfo/Europe/Paris", test::contents("/usr/share/zoneinfo/Europe/Paris"));
    const test::ScopedEnvironment inner("TZDIR", folder.file("zoneinfo"));
    std::filesystem::create_symlink(folder.file("zoneinfo/Europe/Paris"), folder.file("localtime"));
    EXPECT_EQ(zones.localName(), "Europe/Paris");
    EXPECT_EQ(zones.local().offsetAt(1800014400).abbreviation, "CET");
    int changes = 0;
    std::unique_ptr<platform::Watch> watch = zones.watchLocal([&] {
        ++changes;
        watch.reset();
    });
    std::filesystem::rename(folder.write("next", utcFile()), folder.file("localtime"));
    EXPECT_TRUE(loop.runUntil([&] { return changes > 0; }, std::chrono::seconds(5)));
    EXPECT_EQ(zones.localName(), "");
    EXPECT_EQ(zones.local().offsetAt(0).abbreviation, "UTC");
    for (const auto& [value, name, abbreviation] :
         {std::tuple{"Europe/Paris", "Europe/Paris", "CET"},
          {":Europe/Paris", "Europe/Paris", "CET"},
          {"EST5EDT", "", "EST"},
          {"", "", "UTC"}}) {
        const test::ScopedEnvironment zone("TZ", value);
        EXPECT_EQ(zones.localName(), name) << value;
        EXPECT_EQ(zones.local().offsetAt(1800014400).abbreviation, abbreviation) << value;
    }
}

TEST_F(PosixTimeZonesTest, ListsTheZonesOfTheDatabase) {
    folder.write("Europe/Paris", utcFile());
    folder.write("right/Europe/Paris", utcFile());
    folder.write("notes.txt", "no zone");
    EXPECT_THAT(zones.names(), ElementsAre("Europe/Paris"));
    folder.write("tzdata.zi", "# version\nR d 1916 o\nZ Asia/Tokyo 9:18:59 - LMT\n9 - JST\n"
                              "L Asia/Tokyo Japan\nL\nZ ../bad 0 - A\nZ Asia/Tokyo");
    EXPECT_THAT(zones.names(), ElementsAre("Asia/Tokyo", "Japan"));
}

} // namespace
