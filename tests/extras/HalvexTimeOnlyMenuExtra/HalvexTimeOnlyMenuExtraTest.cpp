#include "platform/DynamicLoader.h"
#include "platform/TrustedFile.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "testing/ManualClock.h"
#include "testing/ManualPreferences.h"
#include "testing/RecordingGraphics.h"
#include "testing/RecordingHost.h"
#include "testing/RecordingLog.h"
#include "tests/support/ScopedEnvironment.h"

#include <gmock/gmock.h>

using namespace platform;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

TEST(HalvexTimeOnlyMenuExtra, ShowsTheTimeInTheUsersFormatAndTheDateInItsMenu) {
    expat::install();
    const test::ScopedEnvironment language("LC_ALL", "C");
    halvextest::ManualClock clock;
    clock.seconds = 1795391999; // 2026-11-22 23:59:59 UTC, a Sunday
    halvextest::ManualPreferences preferences;
    halvextest::RecordingGraphics graphics;
    halvextest::RecordingHost host;
    halvextest::RecordingLog log;

    const auto bundle = Bundle::bundleWithPath(HALVEX_TIME_ONLY_ITEM);
    std::string reason;
    const auto code =
        dynamicLoader().load(TrustedFile::open(*bundle->executablePath(), reason), reason);
    ASSERT_TRUE(code) << reason;
    const auto make = reinterpret_cast<MenuExtraEntryPoint>(code->symbol(kMenuExtraEntryPoint));
    std::shared_ptr<MenuExtra> extra(make("HalvexTimeOnlyMenuExtra"));
    ASSERT_EQ(extra->initWithBundle(bundle), extra);
    const auto title = [&] { return extra->attributedTitle()->string(); };
    const auto set = [&](const char* format) {
        preferences["com.quorvanesoftware.HalvexPro"].set("TimeOnlyClockFormat",
                                                          PropertyList(std::string(format)));
    };

    EXPECT_EQ(title(), "23:59");
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Minute));
    clock.moveTo(clock.seconds + 1);
    EXPECT_EQ(title(), "00:00");
    set("%-I:%M:%S %p");
    EXPECT_EQ(title(), "12:00:00 AM");
    EXPECT_THAT(clock.intervals(), ElementsAre(TickInterval::Second));
    EXPECT_FALSE(log.contains("TimeOnlyClockFormat"));
    log.take();
    set(" ");
    EXPECT_EQ(title(), "00:00") << "the default";
    EXPECT_THAT(log.take(), ElementsAre(HasSubstr("TimeOnlyClockFormat is not a usable format")));
    preferences["com.quorvanesoftware.HalvexPro"].set("TimeOnlyClockOther", PropertyList(true));
    EXPECT_THAT(log.take(), IsEmpty()) << "it is logged once";

    extra->menuWillOpen();
    EXPECT_EQ(extra->menu()->items().front()->title(), "Monday, November 23, 2026");
    extra->menuDidClose();
    extra->willUnload();
    set("%H");
    EXPECT_EQ(title(), "00:00");
    EXPECT_THAT(clock.intervals(), IsEmpty());
}

} // namespace
