#include "extras/calendar/CalendarTexts.h"
#include "extras/calendar/WeekRules.h"
#include "tests/extras/calendar/UserLocale.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <ostream>

using namespace extras;
using namespace std::chrono;

namespace {

struct Country {
    const char* locale;
    weekday first;
    unsigned minimalDays;
    unsigned weekend; // Sunday is bit 0
    const char* day;  // 2026-11-24
    const char* number;
    const char* range;
    friend std::ostream& operator<<(std::ostream& stream, const Country& country) {
        return stream << country.locale;
    }
};

class Locales : public testing::TestWithParam<Country> {};

void check(const Country& country) {
    const WeekRules rules = localeWeekRules();
    EXPECT_EQ(rules.numbering.firstWeekday, country.first);
    EXPECT_EQ(rules.numbering.minimalDays, country.minimalDays);
    EXPECT_EQ(rules.weekend.to_ulong(), country.weekend);
    const sys_days day = year(2026) / 11 / 24;
    EXPECT_EQ(calendar_texts::longDate(day), country.day);
    EXPECT_EQ(calendar_texts::number(24), country.number);
    EXPECT_EQ(calendar_texts::shortRange({day, day + days(9)}), country.range);
}

/// The code under test reads the user's locale once per process.
TEST_P(Locales, DecideAboutWeeksWeekendsDigitsAndTheOrderOfDates) {
    const test::UserLocale locale(GetParam().locale);
    EXPECT_EXIT(
        {
            check(GetParam());
            std::exit(HasFailure() ? 1 : 0);
        },
        testing::ExitedWithCode(0), "");
}

INSTANTIATE_TEST_SUITE_P(
    All, Locales,
    testing::Values(Country{"de_DE", Monday, 4, 0b1000001, "Dienstag, 24. November 2026", "24",
                            "24. Nov – 3. Dez 2026"},
                    Country{"en_US", Sunday, 1, 0b1000001, "Tuesday, November 24, 2026", "24",
                            "Nov 24 – Dec 3, 2026"},
                    Country{"he_IL", Sunday, 1, 0b1100000, "שלישי, 24 נובמבר 2026", "24",
                            "24 נוב – 3 דצמ 2026"},
                    Country{"fa_IR", Saturday, 1, 0b0110000,
                            "سه‌شنبه, 24 نوامبر 2026", "۲۴",
                            "24 نوامبر – 3 دسامبر 2026"}),
    [](const auto& one) { return std::string(one.param.locale); });

} // namespace
