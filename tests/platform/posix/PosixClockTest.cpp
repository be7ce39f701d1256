#include "platform/posix/PosixClock.h"

#include "tests/support/PollingMainThread.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <ctime>
#include <filesystem>

using platform::TickInterval;
using platform::posix::PosixClock;
using namespace std::chrono_literals;

namespace {

class PosixClockTest : public testing::Test {
  protected:
    test::TemporaryFolder folder;
    test::PollingMainThread loop;
    PosixClock clock{folder.write("localtime", "zone")};
};

TEST_F(PosixClockTest, TicksAtSecondBoundariesUntilTheHandlerDestroysTheTicker) {
    std::vector<std::int64_t> nanoseconds;
    std::unique_ptr<platform::Watch> watch;
    watch = clock.tick(TickInterval::Second, [&] {
        timespec now{};
        clock_gettime(CLOCK_REALTIME, &now);
        EXPECT_EQ(clock.now(), now.tv_sec);
        nanoseconds.push_back(now.tv_nsec);
        if (nanoseconds.size() == 3)
            watch.reset();
    });
    EXPECT_FALSE(loop.runUntil([&] { return nanoseconds.size() > 3; }, 4200ms));
    EXPECT_EQ(nanoseconds.size(), 3U);
    EXPECT_EQ(loop.wakeUps(), 3);
    for (const auto since : nanoseconds)
        EXPECT_LT(since, 500'000'000) << "not at the boundary";
}

TEST_F(PosixClockTest, TicksImmediatelyWhenTheTimeZoneIsReplaced) {
    int ticks = 0;
    const auto watch = clock.tick(TickInterval::Minute, [&] { ++ticks; });
    const auto next = folder.write("next", "another zone");
    std::filesystem::rename(next, folder.file("localtime"));
    EXPECT_TRUE(loop.runUntil([&] { return ticks > 0; }, 5s));
}

} // namespace
