#include "extras/clock/ClockFormat.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/DynamicLoader.h"
#include "platform/TrustedFile.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/ApplicationServices.h"
#include "tests/support/Fakes.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <thread>

using namespace platform;
using testing::ElementsAre;
using namespace std::chrono_literals;
namespace clock_format = extras::clock_format;

namespace {

constexpr std::int64_t kSunday = 1795387287; // 2026-11-22 22:41:27 UTC

/// Runs the code of the shipped bundle with fake services.
class HalvexTimeMenu : public testing::Test {
  protected:
    void SetUp() override {
        expat::install();
        clock.seconds = kSunday;
    }
    void writePreferences(const std::string& entries) {
        const auto next = folder.write("next", "<plist><dict>" + entries + "</dict></plist>");
        std::filesystem::create_directories(folder.file("Library/Preferences"));
        std::filesystem::rename(next, folder.file(kPreferences));
    }
    void setFormat(const std::string& format) {
        writePreferences("<key>MenuClockFormat</key><string>" + format + "</string>");
    }
    void start() {
        const auto bundle = Bundle::bundleWithPath(HALVEX_TIME_MENU);
        std::string reason;
        code = dynamicLoader().load(TrustedFile::open(*bundle->executablePath(), reason), reason);
        ASSERT_TRUE(code) << reason;
        const auto make = reinterpret_cast<MenuExtraEntryPoint>(code->symbol(kMenuExtraEntryPoint));
        ASSERT_NE(make, nullptr);
        extra.reset(make("HalvexTimeMenu"));
        ASSERT_EQ(extra->initWithBundle(bundle), extra);
    }
    std::string title() const { return extra->attributedTitle()->string(); }
    bool becomes(const std::string& text) {
        return loop.runUntil([&] { return title() == text; }, 5s);
    }

    static constexpr const char* kPreferences =
        "Library/Preferences/com.quorvanesoftware.HalvexPro.plist";

    test::TemporaryFolder folder;
    test::ScopedEnvironment home{"HOME", folder.path().string()};
    test::ScopedEnvironment language{"LC_ALL", "C"};
    test::RecordingLog log;
    test::RecordingHost host;
    test::RecordingGraphics graphics;
    test::RecordingPasteboard pasteboard;
    test::PollingMainThread loop;
    test::ManualClock clock;
    std::unique_ptr<LoadedCode> code; // destroyed after the objects it created
    std::shared_ptr<MenuExtra> extra;
};

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

TEST_F(HalvexTimeMenu, ShowsDateAndTimeInItsMenuAndCopiesTheOneChosen) {
    start();
    extra->menuWillOpen();
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Second));
    auto items = extra->menu()->items();
    ASSERT_EQ(items.size(), 5U);
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
    const auto& items = extra->menu()->items();
    EXPECT_TRUE(items.at(2)->isSeparatorItem());
    EXPECT_EQ(items.at(4)->title(), "Preferences…");
    EXPECT_TRUE(items.at(4)->perform());
    EXPECT_THAT(services.journal(), testing::Contains("open /Pane with System Preferences"));
    EXPECT_EQ(items.at(3)->title(), "Calculator");
    EXPECT_TRUE(items.at(3)->perform());
    while (std::ranges::count(services.journal(), "front 1") == 0)
        std::this_thread::yield();
    while (extra.use_count() > 1) // until the worker thread has released the item
        services.runMainThread();
}

TEST_F(HalvexTimeMenu, DisablesTheEntriesThatNeedAMissingPane) {
    test::ApplicationServices services;
    start();
    const auto enabled = [&] {
        const auto& items = extra->menu()->items();
        return std::pair(items.at(3)->isEnabled(), items.at(4)->isEnabled());
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
    extra->willUnload();
    EXPECT_THAT(clock.intervals(), ElementsAre());
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
