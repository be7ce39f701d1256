#include "platform/posix/PosixTimers.h"

#include "platform/Clock.h"
#include "testing/ManualTimeZones.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

using namespace std::chrono_literals;
using platform::Watch;

namespace {

class PosixTimersTest : public testing::Test {
  protected:
    test::RecordingLog log;
    halvextest::ManualTimeZones zones;
    test::PollingMainThread loop;
    platform::posix::PosixTimers timers;
};

TEST_F(PosixTimersTest, FireOnceEachAndThenLeaveTheProcessAsleep) {
    std::string calls;
    std::unique_ptr<Watch> first;
    first = timers.after(50ms, 0ms, [&] {
        calls += 'a';
        first.reset();
    });
    const auto start = std::chrono::steady_clock::now();
    const auto zero = timers.after(-1s, -1s, [&] { calls += '0'; });
    const auto past = timers.at(0, [&] { calls += 'p'; });
    const auto never = timers.after(std::chrono::nanoseconds::max(), 0ms, [&] { calls += 'n'; });
    const auto local = timers.atLocalTime("", {.year = 1990}, [&] { calls += 'l'; });
    const auto second = timers.at(platform::systemClock().now() + 1, [&] { calls += 's'; });
    timers.after(10ms, 0ms, [&] { calls += 'x'; }).reset();
    EXPECT_EQ(calls, "");
    EXPECT_TRUE(loop.runUntil([&] { return calls.size() >= 5; }, 10s));
    EXPECT_GE(std::chrono::steady_clock::now() - start, 0ms);
    EXPECT_THAT(calls, testing::UnorderedElementsAre('0', 'p', 'l', 'a', 's'));
    const int wakeUps = loop.wakeUps();
    EXPECT_FALSE(loop.runUntil([] { return false; }, 300ms));
    EXPECT_EQ(loop.wakeUps(), wakeUps);
}

TEST_F(PosixTimersTest, WakeTheProcessOncePerPeriodForTenTimersWithATolerance) {
    std::vector<std::unique_ptr<Watch>> watches;
    int calls = 0;
    for (int i = 0; i < 10; ++i) {
        watches.push_back(timers.every(300ms, 100ms, [&] { ++calls; }));
        loop.runUntil([] { return false; }, 37ms);
    }
    loop.runUntil([] { return false; }, 1500ms);
    const int before = std::exchange(calls, 0), wakeUps = loop.wakeUps();
    EXPECT_GT(before, 10);
    loop.runUntil([&] { return calls >= 50; }, 10s);
    EXPECT_EQ(calls, 50);
    EXPECT_LE(loop.wakeUps() - wakeUps, 6);
}

TEST_F(PosixTimersTest, AreRefusedIfTheyCannotWork) {
    EXPECT_FALSE(timers.every(999us, 0ms, [] {}));
    EXPECT_FALSE(timers.atLocalTime("", {.year = INT64_MAX}, [] {}));
    EXPECT_EQ(log.take().size(), 2U);
    EXPECT_FALSE(timers.atLocalTime("Unknown/Zone", {}, [] {}));
    EXPECT_FALSE(loop.runUntil([] { return false; }, 50ms));
    EXPECT_EQ(loop.wakeUps(), 0);
}

} // namespace
