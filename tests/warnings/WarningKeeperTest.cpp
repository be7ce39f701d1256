#include "platform/posix/PosixFileManager.h"
#include "tests/support/FailingCalls.h"
#include "tests/warnings/WarningFixture.h"

#include <optional>

using namespace std::chrono_literals;
using platform::UserNotificationEvent;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using WarningKeeper = test::WarningFixture; // at 12:30 UTC; times are minutes after 12:00

TEST_F(WarningKeeper, RingsEachWarningAtItsTimeOnly) {
    set("hour", "every hour");
    set("day", "every day at 13:30");
    set("once", "at 13:30");
    set("delay", "in 20 minutes");
    const Program program;
    for (const auto& [minutes, titles] :
         std::vector<std::pair<int, std::vector<std::string>>>{{49, {}},
                                                               {50, {"delay"}},
                                                               {60, {"hour"}},
                                                               {89, {}},
                                                               {90, {"day", "once"}},
                                                               {120, {"hour"}},
                                                               {180, {"hour"}}}) {
        moveTo(minutes);
        EXPECT_EQ(takeShown(), titles) << minutes;
    }
    EXPECT_THAT(titlesInFile(), ElementsAre("hour", "day"));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(WarningKeeper, WakesUpOnlyWhenAWarningIsDue) {
    Program program;
    EXPECT_THAT(timers.running(), IsEmpty());
    set("hour", "every hour");
    EXPECT_TRUE(loop.runUntil([&] { return !timers.running().empty(); }, 5s));
    ASSERT_EQ(timers.running().size(), 2U);
    EXPECT_EQ(timers.running().at(0)->instant, kNoon + 3600);
    EXPECT_EQ(timers.running().at(1)->due, 1802s) << "only if the clock is set back";
    moveTo(60);
    moveTo(120);
    EXPECT_THAT(shown(), ElementsAre("hour")) << "the second one replaces the first";
    takeShown();
    warnings::WarningStore().remove({program.store.warnings().at(0).identifier});
    EXPECT_TRUE(loop.runUntil([&] { return timers.running().empty(); }, 5s));
}

TEST_F(WarningKeeper, ReportsTogetherAndOnceWhatWasMissedDuringSuspendOrWithoutAProgram) {
    for (const bool isRunning : {true, false}) {
        clock.seconds = kNoon + 1800;
        set("hour", "every hour");
        set("tea", "in 20 minutes");
        set("late", "in 88 minutes");
        set("future", "in 200 minutes");
        std::optional<Program> program;
        if (isRunning)
            program.emplace();
        moveTo(120, 90min);
        if (!isRunning)
            program.emplace();
        // 14:00 has just come, so the hour rings; 13:00 was missed.
        EXPECT_THAT(takeShown(), ElementsAre("hour", "missed hour 1 tea 1 late 1")) << isRunning;
        timers.advance(1h);
        EXPECT_THAT(shown(), IsEmpty());
        EXPECT_THAT(titlesInFile(), ElementsAre("hour", "future"));
        std::filesystem::remove(file());
    }
}

TEST_F(WarningKeeper, CountsAsMissedAfterAMinute) {
    for (const auto& [seconds, title] : {std::pair(60, "tea"), {61, "missed tea 1"}}) {
        clock.seconds = kNoon;
        set("tea", "in 10 minutes");
        clock.seconds += 600 + seconds;
        const Program program;
        EXPECT_THAT(takeShown(), ElementsAre(title));
    }
}

TEST_F(WarningKeeper, FollowsTheLocalClocksThroughBothDaylightSavingChangesAndIntoOtherZones) {
    zones.add("Berlin", "CET-1CEST,M3.5.0,M10.5.0/3");
    zones.add("New York", "EST5EDT");
    zones.setLocal("Berlin");
    struct Row {
        platform::CivilTime set, next; ///< in UTC
    };
    for (const auto& [before, next] :
         std::vector<Row>{{{2026, 3, 28, 16, 30}, {2026, 3, 29, 15, 30}},
                          {{2026, 10, 24, 15, 30}, {2026, 10, 25, 16, 30}}}) {
        clock.seconds = *platform::secondsSince1970(before);
        set("home", "every day at 17:30");
        const Program program;
        clock.seconds = *platform::secondsSince1970(next) - 1;
        timers.advance(0s);
        EXPECT_THAT(shown(), IsEmpty());
        ++clock.seconds;
        timers.advance(0s);
        EXPECT_THAT(takeShown(), ElementsAre("home"));
        std::filesystem::remove(file());
    }
    clock.seconds = *platform::secondsSince1970({2026, 11, 24, 10});
    set("home", "at 17:30");
    const Program program;
    zones.setLocal("New York");
    clock.seconds = *platform::secondsSince1970({2026, 11, 24, 16, 30});
    timers.advance(0s);
    EXPECT_THAT(shown(), IsEmpty()) << "17:30 in Berlin";
    clock.seconds = *platform::secondsSince1970({2026, 11, 24, 22, 30});
    timers.advance(0s);
    EXPECT_THAT(takeShown(), ElementsAre("home"));
}

TEST_F(WarningKeeper, DoesNotRingAgainWhenTheClockIsSetBack) {
    set("hour", "every hour");
    set("day", "every day at 13:00");
    const Program program;
    moveTo(60);
    EXPECT_THAT(takeShown(), ElementsAre("hour", "day"));
    moveTo(10);
    timers.advance(51min);
    moveTo(60);
    EXPECT_THAT(shown(), IsEmpty());
    moveTo(120, 2h);
    EXPECT_THAT(takeShown(), ElementsAre("hour"));
}

TEST_F(WarningKeeper, RecoversWhenTheClockHasBeenYearsAhead) {
    clock.seconds = kNoon + std::int64_t{50} * 365 * 86400;
    set("hour", "every hour");
    const Program program;
    moveTo(30, 2h);
    moveTo(60);
    EXPECT_THAT(takeShown(), ElementsAre("hour"));
}

TEST_F(WarningKeeper, IsOneOfSeveralThatRings) {
    set("tea", "in 10 minutes");
    set("hour", "every hour");
    const Program one;
    const Program other;
    moveTo(40);
    EXPECT_THAT(shown(), ElementsAre("tea"));
    timers.advance(20s);
    EXPECT_THAT(takeShown(), ElementsAre("tea")) << "the other one waits for the desktop's reply";
    timers.advance(1h);
    EXPECT_THAT(shown(), IsEmpty());
    moveTo(60);
    EXPECT_THAT(takeShown(), ElementsAre("hour"));
    timers.advance(1min);
    EXPECT_THAT(shown(), IsEmpty());
}

TEST_F(WarningKeeper, RingsWhatAnotherOneCouldNotFinishBeforeItWasKilled) {
    for (const bool isRecorded : {false, true}) {
        set("tea", "in 10 minutes");
        std::optional<Program> killed(std::in_place);
        const Program other;
        clock.seconds += 600;
        timers.advance(0s);
        EXPECT_THAT(shown(), ElementsAre("tea"));
        if (isRecorded)
            notifications.report("tea", UserNotificationEvent::Shown);
        killed.reset();
        notifications.removeExpired();
        timers.advance(5s);
        EXPECT_EQ(takeShown(),
                  isRecorded ? std::vector<std::string>() : std::vector<std::string>{"tea"});
        EXPECT_THAT(titlesInFile(), IsEmpty());
    }
}

TEST_F(WarningKeeper, RingsOnceWhileTheDiskIsFull) {
    set("tea", "in 10 minutes");
    set("hour", "every hour");
    const Program one;
    const Program other;
    {
        test::FailingCalls calls(1, ENOSPC, test::FailingCalls::Times::ForGood);
        platform::posix::PosixFileManager full({}, calls);
        const platform::ScopedService<platform::FileManager> service(full);
        moveTo(40);
        EXPECT_THAT(takeShown(), ElementsAre("tea"));
        timers.advance(30min);
        moveTo(60);
        EXPECT_THAT(takeShown(), ElementsAre("hour"));
        timers.advance(30min);
        EXPECT_THAT(shown(), IsEmpty());
        EXPECT_FALSE(set("new", "every hour"));
    }
    EXPECT_LT(log.take().size(), 20U);
    EXPECT_THAT(titlesInFile(), ElementsAre("tea", "hour"));
    timers.advance(1h);
    EXPECT_THAT(titlesInFile(), ElementsAre("hour"));
    EXPECT_THAT(shown(), IsEmpty());
    moveTo(120, 10min);
    EXPECT_THAT(takeShown(), ElementsAre("hour"));
}

TEST_F(WarningKeeper, RecordsARingingThatTheDesktopNeverConfirmsOrCannotShow) {
    set("tea", "in 10 minutes");
    const Program program;
    moveTo(40);
    timers.advance(31s);
    EXPECT_THAT(titlesInFile(), IsEmpty());
    EXPECT_EQ(log.beeps(), 0);
    notifications.shows = false;
    set("coffee", "in 10 minutes");
    const Program other;
    moveTo(50);
    EXPECT_EQ(log.beeps(), 1);
    EXPECT_THAT(titlesInFile(), IsEmpty());
}

TEST_F(WarningKeeper, SetsAWarningAgainAndHasWorkUntilItsNotificationIsClosed) {
    set("tea", "in 10 minutes");
    Program program;
    int idle = 0;
    program.keeper.setIdleHandler([&] { ++idle; });
    moveTo(40);
    const std::string key = notifications.shown.at(0).key;
    notifications.report("tea", UserNotificationEvent::Shown);
    EXPECT_TRUE(program.keeper.hasWork());
    EXPECT_TRUE(notifications.choose(key, warnings::kAgainAction));
    notifications.report("tea", UserNotificationEvent::Closed);
    EXPECT_EQ(idle, 0);
    moveTo(45);
    EXPECT_THAT(shown(), ElementsAre("tea"));
    notifications.report("tea", UserNotificationEvent::Shown);
    EXPECT_EQ(idle, 0);
    timers.advance(61min);
    EXPECT_EQ(idle, 1) << "open for an hour";
    EXPECT_FALSE(program.keeper.hasWork());
}

} // namespace
