#include "apps/menubar/MenuBar.h"
#include "identifiers/ExportedIdentifiers.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"
#include "tests/soak/Resources.h"
#include "tests/support/Fakes.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"

#include <QEventLoop>
#include <QTimer>

#include <gtest/gtest.h>

namespace {

constexpr std::int64_t kStart = 1795392000; // 2026-11-23 00:00:00 UTC
constexpr int kSecondsPerDay = 86'400;

/// The bar in this process with both clocks, of which the product's shows seconds. The time is set
/// by hand.
class Ticks : public testing::Test {
  protected:
    Ticks() {
        platform::expat::install();
        clock.seconds = kStart;
        home.write("Library/Preferences/com.quorvanesoftware.HalvexPro.plist",
                   "<plist><dict><key>MenuClockFormat</key><string>%a %e %b %H:%M:%S</string>"
                   "</dict></plist>");
        bar.items().add(HALVEX_CLOCK, 0, apps::Origin::CommandLine);
        bar.items().add(HALVEX_TIME_MENU, 1, apps::Origin::CommandLine);
        for (const apps::Item& item : bar.items())
            QObject::connect(item.widget.get(), &apps::ItemWidget::drawn, &bar,
                             [this] { ++drawn; });
        bar.show();
    }
    /// Opens or closes the product's menu every minute. The bar draws just before its loop blocks.
    void runSeconds(int count) {
        QEventLoop loop;
        QTimer timer;
        QObject::connect(&timer, &QTimer::timeout, &loop, [&] {
            if (count-- == 0)
                return loop.quit();
            clock.moveTo(clock.seconds + 1);
            if (clock.seconds % 60 == 0)
                bar.click(HalvexMenuID, {});
        });
        timer.start(0);
        loop.exec();
    }

    const test::TemporaryFolder home;
    const test::ScopedEnvironment variable{"HOME", home.path().string()};
    test::ManualClock clock;
    platform::qt::QtGraphics& graphics = platform::qt::install();
    apps::CrashJournal journal;
    apps::MenuBar bar{graphics, journal};
    int drawn = 0;
};

TEST_F(Ticks, AreAllDrawnAndLeakNoResources) {
    runSeconds(200);
    const auto before = test::resources("/proc/self");
    const int count = test::repetitions("HALVEX_TICKS", kSecondsPerDay);
    drawn = 0;
    runSeconds(count);
    test::expectNoGrowth(before, test::resources("/proc/self"), std::to_string(count) + " ticks");
    EXPECT_GE(drawn, count);
}

} // namespace
