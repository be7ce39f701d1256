#include "platform/posix/TimerQueue.h"

#include "platform/runtime/Guard.h"
#include "testing/ManualTimeZones.h"

#include <gmock/gmock.h>

using platform::posix::TimerQueue;
using testing::ElementsAre;
using testing::IsEmpty;
using Timer = TimerQueue::Timer;
using Kind = Timer::Kind;

namespace {

constexpr std::int64_t kSecond = 1'000'000'000;
constexpr std::int64_t kNoon = 1'800'014'400; // 2027-01-15 12:00:00 UTC

/// A machine whose time passes in the test. Times are in seconds.
class TimerQueueTest : public testing::Test {
  protected:
    std::shared_ptr<Timer> add(const std::string& name, Timer timer) {
        auto result = std::make_shared<Timer>(std::move(timer));
        result->handler = [this, name] { calls.push_back(name + ' ' + std::to_string(elapsed())); };
        queue.add(result, now);
        return result;
    }
    static Timer once(std::int64_t delay, std::int64_t tolerance = 0) {
        return {.kind = Kind::Once, .period = delay * kSecond, .tolerance = tolerance * kSecond};
    }
    static Timer periodic(std::int64_t period, std::int64_t tolerance) {
        return {
            .kind = Kind::Periodic, .period = period * kSecond, .tolerance = tolerance * kSecond};
    }
    std::int64_t elapsed() const { return now.elapsed / kSecond; }
    /// Wakes up whenever a timer needs it.
    void pass(std::int64_t seconds) {
        const std::int64_t end = now.elapsed + seconds * kSecond;
        for (;;) {
            const std::int64_t wait = std::max(queue.nextTarget(now), now.clock) - now.clock;
            if (queue.nextTarget(now) == INT64_MAX || now.elapsed + wait > end)
                break;
            jump(wait);
            wake();
        }
        jump(end - now.elapsed);
    }
    void jump(std::int64_t nanoseconds) {
        now.elapsed += nanoseconds;
        now.clock += nanoseconds;
    }
    void wake() {
        ++wakeUps;
        queue.markDue(now);
        queue.runDue();
    }
    void setClock(std::int64_t seconds) {
        now.clock = seconds * kSecond;
        queue.clockChanged(now);
        wake();
    }
    std::vector<std::string> take() { return std::exchange(calls, {}); }

    halvextest::ManualTimeZones zones;
    TimerQueue queue;
    TimerQueue::Now now{0, kNoon* kSecond};
    std::vector<std::string> calls;
    int wakeUps = 0;
};

TEST_F(TimerQueueTest, FiresOnceAfterItsDelayWhichNoClockChangeMoves) {
    add("zero", once(0));
    add("late", once(INT64_MAX / kSecond));
    add("two", once(2));
    add("one", once(1));
    pass(0);
    EXPECT_THAT(take(), ElementsAre("zero 0"));
    setClock(kNoon - 5000);
    pass(100);
    EXPECT_THAT(take(), ElementsAre("one 1", "two 2"));
    setClock(kNoon + 5000);
    EXPECT_THAT(take(), IsEmpty());

    add("slept through", once(20));
    add("slept through first", once(10));
    jump(1000 * kSecond); // suspended
    wake();
    EXPECT_THAT(take(), ElementsAre("slept through first 1100", "slept through 1100"));
}

TEST_F(TimerQueueTest, UsesTheToleranceOfOneDelayForAFullMinuteOrAnotherTimer) {
    jump(7 * kSecond);
    add("minute", once(50, 10));   // 57 to 67
    add("alone", once(65, 10));    // 72 to 82
    add("together", once(20, 10)); // 27 to 37
    add("cause", once(25));        // 32
    add("fraction", once(100, 0))->period += 1;
    pass(120);
    EXPECT_THAT(take(),
                ElementsAre("cause 32", "together 32", "minute 60", "alone 82", "fraction 107"));
}

TEST_F(TimerQueueTest, RepeatsWithoutDriftAndMakesUpForMissedCallsWithOne) {
    add("exact", periodic(10, 0));
    jump(11 * kSecond); // the main thread was busy
    wake();
    pass(10);
    EXPECT_THAT(take(), ElementsAre("exact 11", "exact 20"));
    jump(1004 * kSecond);
    wake();
    pass(5);
    EXPECT_THAT(take(), ElementsAre("exact 1025", "exact 1030"));
}

TEST_F(TimerQueueTest, CallsPeriodicTimersTogetherWithinTheirTolerance) {
    constexpr int kTimers = 10;
    for (int i = 0; i < kTimers; ++i, jump(37 * kSecond / 10))
        add(std::to_string(i), periodic(30, 10));
    pass(300);
    const auto settled = std::exchange(wakeUps, 0);
    EXPECT_LT(settled, 20);
    calls.clear();
    pass(600);
    EXPECT_EQ(wakeUps, 20);
    EXPECT_EQ(calls.size(), std::size_t{20} * kTimers);
    EXPECT_EQ(queue.nextTarget(now) % (30 * kSecond), 0) << "not on the half minute";

    // A change of the clock moves them to the new half minutes, still within the tolerance.
    setClock(kNoon + 90'012);
    pass(40);
    EXPECT_EQ(queue.nextTarget(now) % (30 * kSecond), 0);
}

TEST_F(TimerQueueTest, KeepsTheIntervalsOfAPeriodicTimerWithinItsTolerance) {
    for (const auto& [period, tolerance] :
         {std::pair{30, 10}, {45, 5}, {7, 1}, {90, 45}, {3600, 60}}) {
        jump(12'345'678'901);
        std::vector<std::int64_t> times{now.elapsed};
        const auto timer = add("", periodic(period, tolerance));
        timer->handler = [&] { times.push_back(now.elapsed); };
        const auto other = add("other", periodic(13, 0));
        pass(std::int64_t{period} * 50);
        EXPECT_GE(times.size(), 30U) << period;
        for (std::size_t i = 1; i < times.size(); ++i) {
            EXPECT_GE(times[i] - times[i - 1], (period - tolerance) * kSecond) << period;
            EXPECT_LE(times[i] - times[i - 1], (period + tolerance) * kSecond) << period;
        }
        queue.remove(timer);
        queue.remove(other);
    }
}

TEST_F(TimerQueueTest, FollowsTheClockAndTheZone) {
    zones.add("Europe/Paris", "CET-1CEST,M3.5.0,M10.5.0/3");
    zones.setLocal("Europe/Paris");
    add("past", {.kind = Kind::Clock, .instant = INT64_MIN});
    add("never", {.kind = Kind::Clock, .instant = INT64_MAX});
    add("instant", {.kind = Kind::Clock, .instant = kNoon + 100});
    add("Paris", {.kind = Kind::LocalTime, .zone = "Europe/Paris", .local = {2027, 1, 15, 13, 2}});
    add("local", {.kind = Kind::LocalTime, .local = {2027, 1, 15, 13, 3}});
    pass(50);
    EXPECT_THAT(take(), ElementsAre("past 0"));
    setClock(kNoon - 100); // at 50
    pass(100);
    EXPECT_THAT(take(), IsEmpty());
    setClock(kNoon + 101); // at 150
    EXPECT_THAT(take(), ElementsAre("instant 150"));
    pass(20);
    EXPECT_THAT(take(), ElementsAre("Paris 169"));
    zones.add("local", "<+01>-1:01"); // a minute ahead
    zones.setLocal("local");
    queue.clockChanged(now);
    wake();
    EXPECT_THAT(take(), ElementsAre("local 170"));
    EXPECT_EQ(queue.nextTarget(now), INT64_MAX);
}

TEST_F(TimerQueueTest, RunsHandlersWithTheirOwnersAndLetsThemStopTimers) {
    const auto one = add("one", periodic(1, 0));
    const auto two = add("two", periodic(1, 0));
    two->owner = "org.example.Two";
    std::weak_ptr<int> released;
    {
        const auto object = std::make_shared<int>(0);
        released = object;
        two->handler = [this, object, one, two] {
            calls.push_back(platform::currentOwner());
            wake(); // a nested loop does not call it again
            queue.remove(one);
            queue.remove(two);
            EXPECT_EQ(object.use_count(), 1) << "the running handler has been destroyed";
        };
    }
    jump(kSecond);
    one->target = two->target + 1;
    wake();
    EXPECT_EQ(calls.front(), "org.example.Two");
    EXPECT_TRUE(queue.isEmpty());
    EXPECT_TRUE(released.expired());
}

} // namespace
