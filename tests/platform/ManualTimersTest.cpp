#include "testing/ManualTimers.h"
#include "testing/ManualTimeZones.h"
#include "tests/support/Fakes.h"

#include <gtest/gtest.h>

using namespace std::chrono_literals;

namespace {

TEST(ManualTimers, FireInOrderAsTimePassesAndTheClockMoves) {
    test::ManualClock clock;
    halvextest::ManualTimeZones zones;
    halvextest::ManualTimers timers;
    zones.add("Asia/Tokyo", "JST-9");
    std::string calls;
    auto every = timers.every(2s, 1s, [&] { calls += 'e'; });
    const auto after = timers.after(3s, 0s, [&] {
        calls += 'a';
        every.reset();
    });
    const auto local =
        timers.atLocalTime("Asia/Tokyo", {.year = 1970, .hour = 10}, [&] { calls += 'l'; });
    EXPECT_FALSE(timers.atLocalTime("Unknown/Zone", {}, [] {}));
    timers.advance(10s);
    EXPECT_EQ(calls, "ea");
    clock.moveTo(3600);
    timers.advance(0s);
    EXPECT_EQ(calls, "eal");
    EXPECT_TRUE(timers.running().empty());
}

} // namespace
