#include "extras/calendar/CalendarSelection.h"

#include <gtest/gtest.h>

using namespace std::chrono;
using extras::CalendarSelection;
using extras::DayRange;
using Mode = CalendarSelection::Mode;

namespace {

TEST(CalendarSelection, MovesByMonthsToTheLastDayOfAShorterOne) {
    const struct {
        sys_days start;
        int months;
        sys_days day;
    } cases[] = {{year(2024) / 1 / 31, 1, year(2024) / 2 / 29},
                 {year(2023) / 1 / 31, 1, year(2023) / 2 / 28},
                 {year(1900) / 3 / 29, -1, year(1900) / 2 / 28},
                 {year(2000) / 3 / 31, -1, year(2000) / 2 / 29},
                 {year(2024) / 2 / 29, 12, year(2025) / 2 / 28},
                 {year(2026) / 12 / 24, 1, year(2027) / 1 / 24},
                 {year(9999) / 12 / 5, 1, year(9999) / 12 / 31}};
    for (const auto& [start, months, day] : cases) {
        CalendarSelection selection(start);
        selection.moveByMonths(months);
        EXPECT_EQ(selection.day(), day);
        EXPECT_EQ(selection.range(), DayRange::between(day, day));
        const year_month_day date(day);
        EXPECT_EQ(selection.month(), date.year() / date.month());
    }
}

TEST(CalendarSelection, ShowsTheMonthOfADayThatKeysReachAndLeavesItForTheMouse) {
    const sys_days today = year(2026) / 11 / 24;
    for (const int visible : {1, 2}) {
        CalendarSelection selection(today, visible);
        selection.select(year(2027) / 3 / 1);
        EXPECT_EQ(selection.month(), 2026y / November);
        selection.goTo(year(2027) / 3 / 1);
        EXPECT_EQ(selection.month(), visible == 1 ? 2027y / March : 2027y / February);
        selection.goTo(year(2027) / 2 / 28);
        EXPECT_EQ(selection.month(), 2027y / February);
        selection.scrollByMonths(-14);
        EXPECT_EQ(selection.month(), 2025y / December);
        EXPECT_EQ(selection.day(), sys_days(year(2027) / 2 / 28)) << "scrolling selects nothing";
    }
}

TEST(CalendarSelection, ExtendsARangeInBothDirectionsUntilADayIsSelectedAlone) {
    const sys_days today = year(2026) / 11 / 24;
    CalendarSelection selection(today);
    EXPECT_FALSE(selection.isRange());
    for (const int offset : {3, -3}) {
        selection.goTo(today + days(offset), Mode::Extend);
        EXPECT_TRUE(selection.isRange());
        EXPECT_EQ(selection.range(), DayRange::between(today, today + days(offset)));
    }
    selection.goTo(today + days(1));
    EXPECT_FALSE(selection.isRange());
}

TEST(CalendarSelection, StaysWithinTheYearsOneTo9999) {
    CalendarSelection first(year(1) / 1 / 1);
    first.goTo(first.day() - days(1));
    EXPECT_EQ(first.day(), sys_days(year(1) / 1 / 1));
    CalendarSelection last(year(9999) / 10 / 30, 2);
    for (int i = 0; i < 2; ++i) {
        first.scrollByMonths(1 - 2 * i);
        last.scrollByMonths(1);
        EXPECT_EQ(last.month(), 9999y / November) << "the months are November and December";
    }
    EXPECT_EQ(first.month(), 1y / January);
    first.scrollByMonths(-1);
    EXPECT_EQ(first.month(), 1y / January);
}

} // namespace
