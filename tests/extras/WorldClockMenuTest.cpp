#include "tests/extras/ShippedClock.h"

#include "platform/values/Event.h"

#include <gmock/gmock.h>

using namespace platform;
using test::kSunday;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr const char* kInBar = "<string/><string/><true/>";

std::string location(const std::string& name, const std::string& zone, const std::string& rest = "",
                     const std::string& coordinates = "<string/><string/>") {
    return "<array><string>" + name + "</string><string/><string>" + zone + "</string>" +
           coordinates + rest + "</array>";
}

class WorldClockMenu : public test::ShippedClock {
  protected:
    void SetUp() override {
        ShippedClock::SetUp();
        for (const auto& [name, rules] : {std::pair("Paris", "CET-1CEST,M3.5.0,M10.5.0/3"),
                                          {"Tokyo", "JST-9"},
                                          {"UTC", "UTC0"}})
            zones.add(name, rules);
    }
    /// Sets the local zone of all services.
    void setLocal(const std::string& name) {
        clock.zone = zones.zone(name);
        zones.setLocal(name);
    }
    std::string entry(const std::string& name) const {
        const auto found = item(name);
        return found ? found->trailingText() + ", " + found->subtitle() : "none";
    }
};

TEST_F(WorldClockMenu, ShowsTimesAndCopiesTheOneChosen) {
    writeLocations(location("Paris", "Paris") +
                   location("Tokyo", "Tokyo", "<string/><string>Office</string>") +
                   location("Atlantis", "Atlantis") + location("Nowhere", ""));
    start();
    openMenu(kSunday);
    EXPECT_EQ(entry("Paris"), "23:41, +1 h");
    EXPECT_EQ(entry("Office"), "+1  07:41, +9 h");
    for (const char* name : {"Atlantis", "Nowhere"}) {
        EXPECT_EQ(entry(name), "no usable time zone, ");
        EXPECT_FALSE(item(name)->isEnabled());
    }
    EXPECT_TRUE(item("Office")->perform());
    EXPECT_EQ(pasteboard.text, "Office, 07:41 +1");

    clock.moveTo(kSunday + 33); // 22:42:00
    EXPECT_EQ(entry("Office"), "+1  07:42, +9 h");
    clock.moveTo(kSunday + 33 + 18 * 60); // 23:00:00, midnight in Paris
    EXPECT_EQ(entry("Paris"), "+1  00:00, +1 h");
    clock.moveTo(kSunday); // set back
    EXPECT_EQ(entry("Paris"), "23:41, +1 h");
    setLocal("Tokyo");
    clock.moveTo(kSunday);
    EXPECT_EQ(entry("Paris"), "−1  23:41, −8 h") << "after a change of the local zone";
}

TEST_F(WorldClockMenu, SaysWhenTheSunRisesAndSets) {
    const auto at = [](const char* latitude, const char* longitude) {
        return std::string("<real>") + latitude + "</real><real>" + longitude + "</real>";
    };
    writeLocations(location("City", "Paris", "", at("48.87", "2.33")) +
                   location("Arctic", "Paris", "", at("78.22", "15.65")) +
                   location("Antarctic", "UTC", "", at("-77.85", "166.67")) +
                   location("Unknown", "UTC"));
    start();
    openMenu(1797854400); // 2026-12-21 12:00 UTC
    EXPECT_EQ(item("City")->toolTip(), "Sunrise 08:41, sunset 16:56\nParis (CET)");
    EXPECT_EQ(item("Arctic")->toolTip(), "The sun does not rise today\nParis (CET)");
    EXPECT_EQ(item("Antarctic")->toolTip(), "The sun does not set today\nUTC (UTC)");
    EXPECT_EQ(item("Unknown")->toolTip(), "UTC (UTC)");
    const auto day = item("City")->image();
    EXPECT_EQ(item("Antarctic")->image(), day);
    EXPECT_NE(item("Arctic")->image(), day);
    EXPECT_NE(item("Unknown")->image(), item("Arctic")->image());
    clock.moveTo(1797854400 + 6 * 3600);
    EXPECT_EQ(item("City")->image(), item("Arctic")->image());
}

TEST_F(WorldClockMenu, StaysShortWithManyLocations) {
    std::string records;
    for (int i = 1; i <= 400; ++i)
        records += location("City " + std::to_string(i), "Tokyo");
    writeLocations(records);
    start();
    openMenu(kSunday);
    EXPECT_LT(extra->menu()->items().size(), 25U);
    const auto& groups = item("More Locations")->submenu()->items();
    ASSERT_EQ(groups.size(), 16U);
    EXPECT_EQ(groups.front()->title(), "City 13 – City 37");
    EXPECT_EQ(groups.back()->title(), "City 388 – City 400");
    EXPECT_EQ(entry("City 12"), "+1  07:41, +9 h");
    EXPECT_EQ(entry("City 400"), ", ") << "not yet";
    timers.advance({});
    EXPECT_EQ(entry("City 400"), "+1  07:41, +9 h");
}

TEST_F(WorldClockMenu, EditsTheList) {
    folder.write("Library/PreferencePanes/Halvex Pro.prefPane/Contents/Info.plist",
                 "<plist><dict/></plist>");
    folder.write("Library/PreferencePanes/Halvex Pro.prefPane/Contents/Resources/"
                 "LocationsConfig.plist",
                 "<plist><array>" + location("Oslo", "Europe/Oslo") + "</array></plist>");
    zones.add("Europe/Oslo", "CET-1CEST,M3.5.0,M10.5.0/3");
    setFormat("%H:%M");
    start();
    openMenu(kSunday);
    timers.advance({});
    EXPECT_EQ(item("Edit Locations"), nullptr);
    EXPECT_EQ(item("Add Location")->submenu()->items().size(), 9U);
    EXPECT_TRUE(item("Africa")->isHidden());
    EXPECT_TRUE(item(*item("Europe")->submenu(), "Oslo")->perform());
    EXPECT_TRUE(
        loop.runUntil([&] { return entry("Oslo") == "23:41, +1 h"; }, std::chrono::seconds(5)));

    timers.advance({});
    EXPECT_TRUE(item(*item("Show in the Bar")->submenu(), "Oslo")->perform());
    EXPECT_TRUE(becomes("22:41   Oslo 23:41"));
    timers.advance({});
    EXPECT_EQ(item(*item("Show in the Bar")->submenu(), "Oslo")->state(), MenuItem::State::On);
    EXPECT_TRUE(item(*item("Remove")->submenu(), "Oslo")->perform());
    EXPECT_TRUE(becomes("22:41"));
    timers.advance({});
    EXPECT_EQ(item("Edit Locations"), nullptr);
}

TEST_F(WorldClockMenu, ShowsThatTheListCannotBeRead) {
    folder.write(kLocations, "broken");
    start();
    openMenu(kSunday);
    EXPECT_FALSE(item("The list of locations cannot be read")->isEnabled());
    EXPECT_TRUE(log.contains("cannot read the locations in "));
}

TEST_F(WorldClockMenu, ShowsLocationsInTheBarInTheirOwnFormats) {
    setFormat("%H:%M");
    writeLocations(location("Tokyo", "Tokyo", kInBar) +
                   location("Paris", "Paris", std::string(kInBar) + "<string>P %H</string>") +
                   location("Hidden", "Paris") + location("Atlantis", "Atlantis", kInBar));
    start();
    EXPECT_EQ(title(), "22:41   Tokyo 07:41   P 23");
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Minute));

    writeLocations(location("Tokyo", "Tokyo", std::string(kInBar) + "<string>%S</string>"));
    timers.advance({});
    EXPECT_TRUE(becomes("22:41   27"));
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Second));
}

TEST_F(WorldClockMenu, ShowsUtcUntilTheNextClick) {
    setFormat("%a %H:%M");
    setLocal("Tokyo");
    start();
    const auto afterClick = [&](std::uint32_t flags) {
        click(kOptionKeyMask);
        EXPECT_EQ(title(), "Sun 22:41 UTC");
        click(flags);
        return title();
    };
    for (const std::uint32_t flags : {0U, kOptionKeyMask, kShiftKeyMask, kControlKeyMask})
        EXPECT_EQ(afterClick(flags), "Mon 07:41") << flags;
    EXPECT_EQ(pasteboard.text, "Sun 22:41 UTC") << "copied while it was shown";
    click(0, 2);
    EXPECT_EQ(title(), "Sun 22:41 UTC") << "after a middle click";
    click(0, 2);
    EXPECT_EQ(host.menuToggles, 1) << "only a left click without modifiers opens the menu";
    click(kShiftKeyMask);
    EXPECT_EQ(pasteboard.text, "Mon 07:41");
}

TEST_F(WorldClockMenu, FollowsTheCalendarAndTheLocalZone) {
    setFormat("%F %T %Z");
    start();
    for (const auto& [zone, instant, text] :
         {std::tuple("UTC", 1767225599, "2025-12-31 23:59:59 UTC"),
          {"UTC", 1767225600, "2026-01-01 00:00:00 UTC"},
          {"UTC", 1835395199, "2028-02-28 23:59:59 UTC"},
          {"UTC", 1835395200, "2028-02-29 00:00:00 UTC"},
          {"Paris", 1774745999, "2026-03-29 01:59:59 CET"},
          {"Paris", 1774746000, "2026-03-29 03:00:00 CEST"},
          {"Paris", 1792889999, "2026-10-25 02:59:59 CEST"},
          {"Paris", 1792890000, "2026-10-25 02:00:00 CET"},
          {"Tokyo", 1792889000, "2026-10-25 09:43:20 JST"}}) {
        setLocal(zone);
        clock.moveTo(instant);
        EXPECT_EQ(title(), text);
    }
}

TEST_F(WorldClockMenu, HasTheSameWidthForAllDigits) {
    graphics.widthOfOne = 4;
    setFormat("%H:%M");
    start();
    clock.moveTo(kSunday - 41 * 60 - 11 * 3600); // 11:00
    const float width = extra->length();
    EXPECT_EQ(width, 35 + 2);
    host.lengthChanges = 0;
    clock.moveTo(clock.seconds + 11 * 60);
    EXPECT_EQ(title(), "11:11");
    EXPECT_EQ(extra->length(), width);
    EXPECT_EQ(host.lengthChanges, 0);
}

TEST_F(WorldClockMenu, ShowsTheDateAboveTheTime) {
    writePreferences("<key>MenuClockTwoLines</key><true/>");
    writeLocations(location("Tokyo", "Tokyo", kInBar));
    start();
    graphics.drawn.clear();
    extra->view()->drawRect({{}, extra->view()->frame().size});
    EXPECT_THAT(graphics.drawn,
                ElementsAre("save", "no smoothing", StartsWith("text Sun Nov 22 at 0 "),
                            StartsWith("text 22:41 at 17 "), StartsWith("text Tokyo at 80 "),
                            StartsWith("text 07:41 at 80 "), "restore"));
    EXPECT_EQ(extra->length(), 70 + 10 + 35 + 2);
    click(kShiftKeyMask);
    EXPECT_EQ(pasteboard.text, "Sun Nov 22 22:41");

    writePreferences("<key>MenuClockTwoLines</key><true/>"
                     "<key>MenuClockDateFormat</key><string>%d</string>");
    EXPECT_TRUE(loop.runUntil([&] { return extra->length() == 35 + 10 + 35 + 2; },
                              std::chrono::seconds(5)));
}

} // namespace
