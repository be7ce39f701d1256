#include "extras/clock/ClockFormat.h"
#include "tests/extras/ShippedClock.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/ApplicationServices.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <thread>

using namespace platform;
using testing::ElementsAre;
using namespace std::chrono_literals;
namespace clock_format = extras::clock_format;

namespace {

using HalvexTimeMenu = test::ShippedClock;
using test::kSunday;

TEST_F(HalvexTimeMenu, UpdatesAsOftenAsItsFormatNeedsAndShowsTheIsoWeekAndTheZone) {
    setFormat("%H:%M");
    start();
    EXPECT_EQ(title(), "22:41");
    clock.moveTo(kSunday + 60);
    EXPECT_EQ(title(), "22:42");

    setFormat("%R:%-S");
    EXPECT_TRUE(becomes("22:42:27"));
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Second));

    setFormat("%W %Z");
    EXPECT_TRUE(becomes("47 GMT"));
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Minute));
    clock.moveTo(1609459200); // 2021-01-01, a Friday
    EXPECT_EQ(title(), "53 GMT") << "the ISO week of the year before";
    EXPECT_EQ(extra->view()->toolTip(), "Friday, January 1, 2021\nWeek 53");
}

TEST_F(HalvexTimeMenu, ReloadsItsFormatWhenThePreferencesFileChanges) {
    start();
    EXPECT_EQ(title(), "Sun Nov 22 22:41") << "the default of the locale";
    setFormat("%Y");
    EXPECT_TRUE(becomes("2026"));
    log.take();
    for (const auto& [value, line] : {std::pair("<key>MenuClockFormat</key><integer>5</integer>",
                                                "cannot use preference MenuClockFormat in "),
                                      {"<key>MenuClockFormat</key><string> </string>",
                                       "MenuClockFormat is not a usable format"},
                                      {"<unclosed>", "cannot read preferences from "}}) {
        writePreferences(value);
        EXPECT_TRUE(becomes("Sun Nov 22 22:41")) << value;
        EXPECT_TRUE(log.contains(line)) << value;
        setFormat("%Y");
        EXPECT_TRUE(becomes("2026"));
    }
}

TEST_F(HalvexTimeMenu, FollowsTheTheme) {
    folder.write("Library/Application Support/Themes/Red/Theme.plist",
                 "<plist version=\"1.0\"><dict><key>Colors</key><dict><key>Light</key><dict>"
                 "<key>Title</key><string>#ff0000</string></dict></dict><key>Font</key><dict>"
                 "<key>Family</key><string>Serif</string></dict></dict></plist>");
    start();
    const auto attributes = [this] { return extra->attributedTitle()->attributesAt(0); };
    EXPECT_EQ(attributes(), TextAttributes());
    writePreferences("<key>Theme</key><string>Red</string>");
    EXPECT_TRUE(loop.runUntil([&] { return attributes().foregroundColor == Color{1, 0, 0}; }, 5s));
    EXPECT_EQ(attributes().font, (Font{.family = "Serif"}));
    writePreferences("");
    EXPECT_TRUE(loop.runUntil([&] { return attributes() == TextAttributes(); }, 5s));
}

TEST_F(HalvexTimeMenu, LogsAnUnusableFormatOnceUntilItChanges) {
    const std::string blank = "<key>MenuClockFormat</key><string> </string>";
    const std::string twoLines = "<key>MenuClockTwoLines</key><true/>";
    const std::string line = "MenuClockFormat is not a usable format";
    writePreferences(blank);
    start();
    EXPECT_TRUE(log.contains(line));
    log.take();
    writePreferences(blank + twoLines + "<key>MenuClockDateFormat</key><string>%Y</string>");
    EXPECT_TRUE(becomes("2026 22:41"));
    EXPECT_FALSE(log.contains(line));
    writePreferences(blank + twoLines + "<key>MenuClockDateFormat</key><string> </string>");
    EXPECT_TRUE(becomes("Sun Nov 22 22:41"));
    EXPECT_TRUE(log.contains("MenuClockDateFormat is not a usable format"));
    setFormat("%Y");
    EXPECT_TRUE(becomes("2026"));
    writePreferences(blank);
    EXPECT_TRUE(becomes("Sun Nov 22 22:41"));
    EXPECT_TRUE(log.contains(line));
}

TEST_F(HalvexTimeMenu, ShowsDateAndTimeInItsMenuAndCopiesTheOneChosen) {
    start();
    extra->menuWillOpen();
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Second));
    auto items = extra->menu()->items();
    items.resize(2);
    clock.moveTo(kSunday + 1);
    EXPECT_EQ(items[0]->title(), "Sunday, November 22, 2026");
    EXPECT_EQ(items[1]->title(), "22:41:28 GMT");
    for (const auto& item : items) {
        EXPECT_TRUE(item->perform());
        EXPECT_EQ(pasteboard.text, item->title());
    }
    extra->menuDidClose();
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Minute));
}

TEST_F(HalvexTimeMenu, OpensThePaneAndTheCalculatorFromItsMenu) {
    test::ApplicationServices services;
    services.running = {"Halvex"};
    const test::LoadedPane pane("/Pane");
    start();
    EXPECT_TRUE(item("Preferences…")->perform());
    EXPECT_THAT(services.journal(), testing::Contains("open /Pane with System Preferences"));
    EXPECT_TRUE(item("Calculator")->perform());
    while (std::ranges::count(services.journal(), "front 1") == 0)
        std::this_thread::yield();
    while (extra.use_count() > 1) // until the worker thread has released the item
        services.runMainThread();
}

TEST_F(HalvexTimeMenu, DisablesTheEntriesThatNeedAMissingPane) {
    test::ApplicationServices services;
    start();
    const auto enabled = [&] {
        return std::pair(item("Calculator")->isEnabled(), item("Preferences…")->isEnabled());
    };
    EXPECT_EQ(enabled(), std::pair(false, false));
    EXPECT_TRUE(extra->menu()->items().at(0)->isEnabled());
    services.running = {"Halvex"};
    EXPECT_EQ(enabled(), std::pair(true, false));
    services.running.clear();
    const test::LoadedPane pane("/Pane");
    EXPECT_EQ(enabled(), std::pair(true, true));
}

TEST_F(HalvexTimeMenu, StopsUpdatingWhenItIsUnloaded) {
    start();
    extra->menuWillOpen();
    extra->menuDidClose();
    extra->willUnload();
    EXPECT_THAT(clock.intervals(), ElementsAre());
    EXPECT_THAT(timers.running(), ElementsAre());
    const std::weak_ptr<MenuExtra> watched = extra;
    extra.reset();
    EXPECT_TRUE(watched.expired());
    setFormat("%Y");
    loop.runUntil([] { return false; }, 100ms);
}

TEST(ClockFormat, ExpandsCompositeConversionsAndStripsModifiers) {
    EXPECT_EQ(clock_format::expanded("%T, %a %R, %r, %%T, %c, 100%"),
              "%H:%M:%S, %a %H:%M, %I:%M:%S %p, %%T, %a %b %e %H:%M:%S %Y, 100%");
    EXPECT_EQ(clock_format::bare("%-S %_5OS %s %EX %%-S 5%"), "%S %S %S %X %%-S 5%");
}

TEST(ClockFormat, IsUsableIfItProducesVisibleText) {
    using namespace std::string_literals;
    for (const std::string& format : {"%Z"s, "\xC3\x9Chr %H"s, std::string(256, 'x')})
        EXPECT_TRUE(clock_format::isUsable(format)) << format;
    for (const std::string& format :
         {""s, "   "s, "%H\n%M"s, "%H\xFF"s, std::string(257, 'x'), "%H\0%M"s})
        EXPECT_FALSE(clock_format::isUsable(format)) << format;
}

} // namespace
