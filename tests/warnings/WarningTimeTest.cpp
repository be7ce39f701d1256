#include "warnings/WarningTime.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using platform::CivilTime;
using platform::ZoneRules;
using warnings::WarningTime;

namespace {

TEST(WarningTime, IsParsedFromWhatPeopleTypeAndStoredInOneForm) {
    for (const auto& [typed, stored] : std::vector<std::pair<std::string, std::string>>{
             {"every hour", "every hour"},
             {" Every  Hour ", "every hour"},
             {"every day at 7:05", "every day at 07:05"},
             {"at 17:30", "at 17:30"},
             {"17.30", "at 17:30"},
             {"0:00", "at 00:00"},
             {"23:59", "at 23:59"},
             {"at 5:30 PM", "at 17:30"},
             {"5 am", "at 05:00"},
             {"12am", "at 00:00"},
             {"12:01 pm", "at 12:01"},
             {"in 20 minutes", "in 20 minutes"},
             {"20", "in 20 minutes"},
             {"1 min", "in 1 minute"},
             {"2 h", "in 120 minutes"},
             {"in 168 hours", "in 10080 minutes"}}) {
        const auto time = WarningTime::parse(typed);
        ASSERT_TRUE(time) << typed;
        EXPECT_EQ(time->text(), stored);
        EXPECT_EQ(WarningTime::parse(stored), time);
    }
    for (const std::string& text :
         {std::string(), std::string("every minute"), std::string("at"), std::string("at 17"),
          std::string("24:00"), std::string("17:60"), std::string("17:"), std::string("17:5"),
          std::string("17:300"), std::string("0 am"), std::string("13 pm"), std::string("0"),
          std::string("-5"), std::string("10081"), std::string("169 h"), std::string("20 apples"),
          std::string("99999999999"), std::string("every day at noon"),
          std::string(101, ' ') + "5"})
        EXPECT_FALSE(WarningTime::parse(text)) << text;
}

const std::string kBerlin = "CET-1CEST,M3.5.0,M10.5.0/3";
const std::string kKolkata = "IST-5:30";
const std::string kLordHowe =
    "<+1030>-10:30<+11>-11,M10.1.0,M4.1.0"; // half an hour of daylight saving

std::int64_t instant(const CivilTime& utc) {
    return *platform::secondsSince1970(utc);
}

TEST(WarningTime, OccursByTheLocalClocks) {
    struct Row {
        std::string time, rules;
        CivilTime since, next; ///< in UTC
    };
    for (const auto& [time, rules, since, next] : std::vector<Row>{
             {"every hour", kBerlin, {2026, 11, 24, 10, 20}, {2026, 11, 24, 11}},
             {"every hour", kBerlin, {2026, 11, 24, 11}, {2026, 11, 24, 12}},
             {"every hour", kKolkata, {2026, 11, 24, 10, 20}, {2026, 11, 24, 10, 30}},
             {"every hour", kKolkata, {1960, 1, 1, 10, 40}, {1960, 1, 1, 11, 30}},
             // Forward: 01:00 UTC is 03:00. Back: 02:00 twice.
             {"every hour", kBerlin, {2026, 3, 29, 0, 30}, {2026, 3, 29, 1}},
             {"every hour", kBerlin, {2026, 10, 25, 0}, {2026, 10, 25, 1}},
             // From 02:00 to 02:30, so the next full hour comes after half an hour.
             {"every hour", kLordHowe, {2026, 10, 3, 15, 0}, {2026, 10, 3, 16}},
             {"every hour", kLordHowe, {2026, 4, 4, 14, 30}, {2026, 4, 4, 15, 30}},
             {"every day at 17:30", kBerlin, {2026, 11, 24, 10}, {2026, 11, 24, 16, 30}},
             {"every day at 17:30", kBerlin, {2026, 11, 24, 16, 30}, {2026, 11, 25, 16, 30}},
             {"at 00:00", kBerlin, {2026, 12, 31, 12}, {2026, 12, 31, 23}},
             {"every day at 08:00", kBerlin, {2026, 3, 28, 7}, {2026, 3, 29, 6}},
             // Skipped, and repeated: once a day.
             {"every day at 02:30", kBerlin, {2026, 3, 28, 1, 30}, {2026, 3, 29, 1}},
             {"every day at 02:30", kBerlin, {2026, 3, 29, 1}, {2026, 3, 30, 0, 30}},
             {"every day at 02:30", kBerlin, {2026, 10, 24, 0, 30}, {2026, 10, 25, 0, 30}},
             {"every day at 02:30", kBerlin, {2026, 10, 25, 0, 30}, {2026, 10, 26, 1, 30}},
             {"at 08:00", kBerlin, {2028, 2, 28, 7}, {2028, 2, 29, 7}},
             {"in 90 minutes", kBerlin, {2026, 10, 25, 0, 30}, {2026, 10, 25, 2}}})
        EXPECT_EQ(platform::civilTime(*nextOccurrence(*WarningTime::parse(time), instant(since),
                                                      *ZoneRules::parse(rules))),
                  next)
            << time << " in " << rules << " after " << since.hour << ':' << since.minute;
}

TEST(WarningTime, CountsItsOccurrencesOfTheLastMonth) {
    struct Row {
        std::string time;
        CivilTime now;
        int count;
        CivilTime first, last;
    };
    const std::int64_t since = instant({2026, 11, 24, 12, 30});
    const auto rules = *ZoneRules::parse(kBerlin);
    for (const auto& [time, now, count, first, last] : std::vector<Row>{
             {"every hour", {2026, 11, 24, 13}, 1, {2026, 11, 24, 13}, {2026, 11, 24, 13}},
             {"every hour", {2026, 11, 25, 8, 5}, 20, {2026, 11, 24, 13}, {2026, 11, 25, 8}},
             {"every day at 17:30",
              {2026, 11, 27},
              3,
              {2026, 11, 24, 16, 30},
              {2026, 11, 26, 16, 30}},
             {"every day at 17:30",
              {2027, 11, 27},
              30,
              {2027, 10, 28, 15, 30},
              {2027, 11, 26, 16, 30}},
             {"at 17:30", {2027, 11, 27}, 1, {2026, 11, 24, 16, 30}, {2026, 11, 24, 16, 30}}}) {
        const auto found = occurrencesUntil(*WarningTime::parse(time), since, instant(now), rules);
        ASSERT_TRUE(found) << time;
        EXPECT_EQ(found->count, count) << time;
        EXPECT_EQ(platform::civilTime(found->first), platform::civilTime(instant(first))) << time;
        EXPECT_EQ(platform::civilTime(found->last), platform::civilTime(instant(last))) << time;
    }
    EXPECT_FALSE(occurrencesUntil(*WarningTime::parse("every hour"), since, since + 1799, rules));
}

} // namespace
