#include "extras/calendar/MonthLayout.h"
#include "extras/calendar/CalendarTexts.h"
#include "extras/calendar/DayRange.h"
#include "extras/calendar/WeekRules.h"

#include <gtest/gtest.h>

#include <array>
#include <cstdio>
#include <memory>
#include <sstream>

using namespace extras;
using namespace std::chrono;

namespace {

TEST(MonthLayout, AgreesWithPythonFrom1900To2100ForEveryWeekRule) {
    const std::unique_ptr<FILE, int (*)(FILE*)> table(popen("python3 " HALVEX_MONTH_LAYOUTS, "r"),
                                                      pclose); // NOLINT: not the user's input
    ASSERT_TRUE(table);
    int lines = 0;
    std::array<char, 256> buffer{};
    while (fgets(buffer.data(), buffer.size(), table.get())) {
        std::istringstream line(buffer.data());
        unsigned first = 0, minimalDays = 0, monthNumber = 0;
        int yearNumber = 0, firstDay = 0;
        line >> first >> minimalDays >> yearNumber >> monthNumber >> firstDay;
        const WeekNumbering numbering{weekday(first), minimalDays};
        const MonthLayout layout(year(yearNumber) / month(monthNumber), numbering.firstWeekday);
        ASSERT_EQ(layout.first().time_since_epoch().count(), firstDay) << buffer.data();
        int weeks = 0;
        for (int number = 0; line >> number; ++weeks)
            ASSERT_EQ(weekNumberOfRow(layout.day(weeks * 7), numbering), number)
                << buffer.data() << "row " << weeks;
        const sys_days last = layout.month() / std::chrono::last;
        ASSERT_EQ(layout.cellOf(last).value_or(-7) / 7 + 1, weeks) << buffer.data();
        ++lines;
    }
    EXPECT_EQ(lines, 7 * 3 * 201 * 12);
}

TEST(MonthLayout, ContainsTheNeighbouringDaysAndNoOthers) {
    const MonthLayout layout(year(2026) / November, Monday);
    const std::tuple<sys_days, int, bool> cases[] = {{year(2026) / 10 / 26, 0, false},
                                                     {year(2026) / 10 / 31, 5, false},
                                                     {year(2026) / 11 / 1, 6, true},
                                                     {year(2026) / 11 / 30, 35, true},
                                                     {year(2026) / 12 / 6, 41, false}};
    for (const auto& [day, cell, isInMonth] : cases) {
        EXPECT_EQ(layout.cellOf(day), cell);
        EXPECT_EQ(layout.day(cell), day);
        EXPECT_EQ(layout.isInMonth(day), isInMonth);
    }
    EXPECT_EQ(layout.cellOf(year(2026) / 10 / 25), std::nullopt);
    EXPECT_EQ(layout.cellOf(year(2026) / 12 / 7), std::nullopt);
}

TEST(WeekRules, IsoWeeksNumberRowsThatStartOnAnotherDayByMostOfTheirDays) {
    for (const auto& [day, number] : {std::pair(sys_days(year(2026) / 11 / 22), 48), // a Sunday
                                      {year(2026) / 11 / 21, 48},                    // Saturday
                                      {year(2026) / 11 / 20, 48},                    // Friday
                                      {year(2026) / 11 / 19, 47},                    // Thursday
                                      {year(2020) / 12 / 27, 53},
                                      {year(2021) / 1 / 3, 1}})
        EXPECT_EQ(weekNumberOfRow(day, kIsoWeeks), number);
}

TEST(DayRange, CountsDaysAndWorkingDaysInAnyOrder) {
    const sys_days monday = year(2026) / 11 / 23;
    const WeekRules western;
    const WeekRules israeli{.numbering = {}, .weekend = 0b1100000};
    const std::tuple<int, int, int, int> cases[] = {
        // last day after Monday, days, working days, with a weekend on Friday and Saturday
        {0, 1, 1, 1},  {5, 6, 5, 4},  {6, 7, 5, 5},        {13, 14, 10, 10},
        {-1, 2, 1, 2}, {-7, 8, 6, 6}, {365, 366, 262, 262}};
    for (const auto& [offset, count, working, workingInIsrael] : cases) {
        const DayRange range = DayRange::between(monday, monday + days(offset));
        EXPECT_EQ(range.days(), count);
        EXPECT_EQ(range.workingDays(western), working) << offset;
        EXPECT_EQ(range.workingDays(israeli), workingInIsrael) << offset;
    }
}

TEST(CalendarTexts, SayHowFarADayIsAndHowLongARange) {
    const sys_days today = year(2028) / 2 / 28;
    for (const auto& [offset, text] : {std::pair(0, "Today"),
                                       {1, "Tomorrow"},
                                       {2, "In 2 days"},
                                       {-1, "Yesterday"},
                                       {-2, "2 days ago"},
                                       {366, "In 366 days"}})
        EXPECT_EQ(calendar_texts::distance(today + days(offset), today), text);
    for (const auto& [count, text, weeks] : {std::tuple(2, "2 days · 1 working day", ""),
                                             {7, "7 days · 1 working day", "1 week"},
                                             {15, "15 days · 1 working day", "2 weeks 1 day"}}) {
        const DayRange range{today, today + days(count - 1)};
        EXPECT_EQ(calendar_texts::length(range, 1), text);
        EXPECT_EQ(calendar_texts::lengthInWeeks(range), weeks);
    }
    EXPECT_EQ(calendar_texts::shortRange({today, today + days(2)}), "Feb 28 – Mar 1, 2028");
    EXPECT_EQ(calendar_texts::shortRange({today, today + days(366)}),
              "Feb 28, 2028 – Feb 28, 2029");
}

} // namespace
