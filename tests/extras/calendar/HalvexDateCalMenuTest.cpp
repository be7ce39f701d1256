#include "testing/ItemUnderTest.h"
#include "testing/ManualApplications.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>

using namespace platform;
using testing::Contains;
using testing::ElementsAre;
using testing::StartsWith;

namespace {

constexpr std::int64_t kMidnight = 1795564800; // 2026-11-25 00:00:00 UTC
constexpr const char* kProduct = "com.quorvanesoftware.HalvexPro";

/// A clock in a zone that the test chooses.
struct ZonedClock final : Clock {
    explicit ZonedClock(halvextest::ManualClock& manual) : clock(manual) {}
    std::int64_t now() const override { return clock.now(); }
    std::tm localTime(std::int64_t time) const override { return clock.localTime(time + offset); }
    void sleep(std::uint64_t) override {}
    std::unique_ptr<Watch> tick(TickInterval interval, std::function<void()> handler) override {
        return clock.tick(interval, std::move(handler));
    }
    halvextest::ManualClock& clock;
    std::int64_t offset = 0; // seconds
    ScopedService<Clock> service{*this};
};

class Calendar : public testing::Test {
  protected:
    void load() {
        PropertyList::Dictionary information;
        information.set("CFBundleIdentifier",
                        PropertyList(std::string("com.quorvanesoftware.HalvexDateCalMenu")));
        ASSERT_TRUE(item.load("HalvexDateCalMenu", information));
    }
    void set(const char* key, PropertyList value) {
        item.preferences[kProduct].set(std::string("DateCalendar") + key, std::move(value));
    }
    void set(const char* key, const char* value) { set(key, PropertyList(std::string(value))); }
    std::string spoken() const { return item.extra().view()->accessibleDescription().value; }
    MenuExtraView& month() { return *item.extra().menu()->items().front()->view(); }
    std::ptrdiff_t logged(const std::string& start) {
        const auto lines = item.log.take();
        return std::ranges::count_if(
            lines, [&](const std::string& line) { return line.starts_with(start); });
    }
    std::string selected() { return month().accessibleDescription().value; }

    const test::TemporaryFolder folder;
    const test::ScopedEnvironment environment[5] = {{"HOME", folder.path().string()},
                                                    {"LC_ALL", "C"},
                                                    {"XDG_CONFIG_HOME", folder.file("config")},
                                                    {"XDG_DATA_HOME", folder.file("data")},
                                                    {"XDG_DATA_DIRS", folder.file("share")}};
    test::PollingMainThread mainThread; // of the file watches
    halvextest::ItemUnderTest item;
    halvextest::ManualApplications applications;
    ZonedClock clock{item.clock};
};

TEST_F(Calendar, FollowsMidnightChangesOfTheZoneAndOfTheClock) {
    set("Title", "both");
    item.clock.seconds = kMidnight - 1;
    load();
    const auto image = [&] { return item.extra().image(); };
    EXPECT_EQ(item.title(), "Tue Nov 24");
    auto before = image();
    ASSERT_TRUE(before);
    EXPECT_TRUE(before->isTemplate());
    item.clock.moveTo(kMidnight - 1);
    EXPECT_EQ(image(), before) << "drawn only when the day changes";
    const struct {
        std::int64_t time, offset;
        const char* title;
        const char* date;
    } changes[] = {{kMidnight, 0, "Wed Nov 25", "Wednesday, November 25, 2026"},
                   {kMidnight, -3600, "Tue Nov 24", "Tuesday, November 24, 2026"},
                   {kMidnight, 13 * 3600, "Wed Nov 25", "Wednesday, November 25, 2026"},
                   {kMidnight - 86401, 0, "Mon Nov 23", "Monday, November 23, 2026"},
                   {1835395199, 0, "Mon Feb 28", "Monday, February 28, 2028"},
                   {1835395200, 0, "Tue Feb 29", "Tuesday, February 29, 2028"}};
    for (const auto& change : changes) {
        clock.offset = change.offset;
        item.clock.moveTo(change.time);
        EXPECT_EQ(item.title(), change.title);
        EXPECT_EQ(spoken(), change.date);
        EXPECT_NE(std::exchange(before, image()), image());
        item.menuTitles();
        EXPECT_EQ(selected(), change.date);
    }
    EXPECT_THAT(item.clock.intervals(), ElementsAre(TickInterval::Minute));
}

TEST_F(Calendar, ShowsAnIconOrADateInTheUsersFormatAndReadsInvalidPreferencesAsDefaults) {
    item.clock.seconds = kMidnight;
    load();
    const auto shown = [&] { return std::pair(item.extra().image() != nullptr, item.title()); };
    EXPECT_EQ(shown(), std::pair(true, std::string()));
    const struct {
        const char* key;
        const char* value;
        bool hasIcon;
        const char* title;
    } cases[] = {{"Title", "date", false, "Wed Nov 25"},
                 {"Format", "%Y-%m-%d, %W", false, "2026-11-25, 48"},
                 {"Title", "both", true, "2026-11-25, 48"},
                 {"Format", "%e. %b", true, "25. Nov"},
                 {"Format", " ", true, "Wed Nov 25"},
                 {"Title", "picture", true, ""}};
    for (const auto& one : cases) {
        set(one.key, one.value);
        EXPECT_EQ(shown(), std::pair(one.hasIcon, std::string(one.title))) << one.value;
    }
    set("Months", PropertyList(std::int64_t{3}));
    set("WeekNumbers", "often");
    set("FirstWeekday", "someday");
    EXPECT_EQ(logged("cannot use preference "), 5) << "each one once";

    set("Title", "date");
    set("Format", "%T");
    EXPECT_THAT(item.clock.intervals(), ElementsAre(TickInterval::Second));
    set("Title", "icon");
    EXPECT_THAT(item.clock.intervals(), ElementsAre(TickInterval::Minute));
}

TEST_F(Calendar, AppliesPreferencesToTheMonth) {
    item.clock.seconds = kMidnight;
    load();
    item.menuTitles();
    const auto drawn = [&] {
        item.graphics.drawn.clear();
        month().drawRect({{}, month().frame().size});
        std::string texts;
        for (const std::string& line : item.graphics.drawn)
            if (line.starts_with("text "))
                texts += line.substr(5, line.find(" in ") - 5) + ' ';
        return texts;
    };
    EXPECT_THAT(drawn(), StartsWith("November 2026 Sun Mon Tue Wed Thu Fri Sat 44 45 "));
    set("FirstWeekday", "monday");
    set("WeekNumbers", "off");
    EXPECT_THAT(drawn(), StartsWith("November 2026 Mon Tue Wed Thu Fri Sat Sun 26 27 28 29 30 "));
    set("Months", PropertyList(std::int64_t{2}));
    EXPECT_THAT(drawn(), testing::HasSubstr("December 2026 Mon"));

    const auto workingDays = [&] {
        item.menuTitles();
        for (int i = 0; i < 6; ++i)
            month().keyDown({.key = Key::Right, .modifierFlags = kShiftKeyMask});
        return month().accessibleDescription().description;
    };
    for (const auto& [weekend, description] :
         {std::pair("friday", "7 days · 6 working days\n1 week"),
          {"friday  saturday", "7 days · 5 working days\n1 week"},
          {"none", "7 days · 7 working days\n1 week"},
          {"locale", "7 days · 5 working days\n1 week"}}) {
        set("Weekend", weekend);
        EXPECT_EQ(workingDays(), description) << weekend;
    }
    item.log.take();
    for (const char* invalid : {"friday holiday", ""})
        set("Weekend", invalid);
    EXPECT_EQ(workingDays(), "7 days · 5 working days\n1 week");
    EXPECT_EQ(logged("cannot use preference Weekend "), 1);
}

TEST_F(Calendar, CopiesTheSelectionInEveryFormat) {
    item.clock.seconds = kMidnight;
    load();
    item.click(kShiftKeyMask);
    EXPECT_EQ(item.pasteboard.text, "Wednesday, November 25, 2026");
    const auto copyable = [&] {
        std::vector<std::string> texts;
        for (const auto& entry : item.extra().menu()->items())
            for (const auto& format : entry->submenu() ? entry->submenu()->items()
                                                       : std::vector<std::shared_ptr<MenuItem>>())
                if (format->perform())
                    texts.push_back(item.pasteboard.text);
        return texts;
    };
    item.menuTitles();
    EXPECT_THAT(copyable(), ElementsAre("Wednesday, November 25, 2026", "11/25/26", "2026-11-25",
                                        "2026-W48-3"));
    month().keyDown({.key = Key::Down, .modifierFlags = kShiftKeyMask});
    EXPECT_THAT(copyable(),
                ElementsAre("Wednesday, November 25, 2026 – Wednesday, December 2, 2026",
                            "11/25/26 – 12/02/26", "2026-11-25/2026-12-02",
                            "2026-W48-3/2026-W49-3"));
    set("CopyFormat", "%d.%m.");
    item.menuTitles();
    month().keyDown({.key = Key::Left});
    month().keyDown({.key = Key::Return});
    EXPECT_EQ(item.pasteboard.text, "24.11.");
}

TEST_F(Calendar, OpensTheDesktopsCalendarProgramOrSaysThatNoneIsInstalled) {
    item.clock.seconds = kMidnight;
    load();
    EXPECT_THAT(item.menuTitles(), Contains("(No calendar program is installed)"));
    applications.installed = {{.identifier = "days.desktop", .name = "Days"},
                              {.identifier = "weeks.desktop", .name = "Weeks"}};
    folder.write("data/applications/mimeinfo.cache", "[MIME Cache]\ntext/calendar=days.desktop;\n");
    EXPECT_TRUE(item.choose("Open Days"));
    set("Program", "weeks.desktop");
    EXPECT_TRUE(item.choose("Open Weeks"));
    set("Program", "none.desktop");
    EXPECT_TRUE(item.choose("Open Days"));
    EXPECT_TRUE(item.choose("Open Days"));
    EXPECT_THAT(applications.requests, ElementsAre("launch days.desktop", "launch weeks.desktop",
                                                   "launch days.desktop", "launch days.desktop"));
    EXPECT_EQ(logged("cannot open days with none.desktop: it is not installed"), 1);
}

} // namespace
