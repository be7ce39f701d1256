#pragma once

#include "extras/icalendar/Moment.h"

#include <chrono>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace extras::icalendar {

/// A day with what rules need to know of it.
struct CivilDay {
    explicit CivilDay(std::chrono::sys_days day);

    std::chrono::sys_days day;
    int year;
    int month;       ///< 1 to 12
    int dayOfMonth;  ///< from 1
    int daysInMonth; ///< 28 to 31
    int weekday;     ///< from 0 for Sunday
};

/// The rule of an event that repeats (RRULE): every day, week, month or year, or every few of them,
/// with INTERVAL, COUNT, UNTIL, BYDAY, BYMONTHDAY, BYMONTH, BYSETPOS and WKST. Not supported are
/// rules for times of day, week numbers and days of the year.
class RecurrenceRule {
  public:
    /// Parses the value of an RRULE. Returns std::nullopt if it is malformed or not supported, and
    /// sets @p reason.
    static std::optional<RecurrenceRule> parse(std::string_view text, std::string& reason);

    /// Completes the rule with the first event, which counts as one of COUNT even if it is not on
    /// a day of the rule. Call it once, before the operations below.
    void startAt(const Moment& first);

    /// Returns whether the event repeats on a day after the first one. Ignores UNTIL and COUNT.
    bool contains(const CivilDay& day);

    /// The value of UNTIL.
    const std::optional<Moment>& until() const { return until_; }

    /// Returns the day of the last event that COUNT permits, or std::nullopt if there is no COUNT
    /// or it goes beyond the year 9999. The first call checks day after day and subtracts their
    /// number from @p steps; if these or 100,000 days do not suffice, COUNT is ignored from then
    /// on.
    std::optional<std::chrono::sys_days> lastCounted(std::int64_t& steps);

  private:
    enum class Frequency { Daily, Weekly, Monthly, Yearly };
    struct NumberedWeekday {
        int weekday; ///< from 0 for Sunday
        int number;  ///< in the month or year, from its end if negative
    };
    struct Parser;
    static constexpr std::uint32_t bit(int number) { return std::uint32_t{1} << number; }

    std::int64_t periodOf(const CivilDay& day) const;
    std::chrono::sys_days firstDayOf(std::int64_t period) const;
    bool isInPeriod(const CivilDay& day) const;
    bool hasDate(const CivilDay& day) const;
    bool hasNumberedWeekday(const CivilDay& day) const;
    bool hasPosition(const CivilDay& day);
    void selectPositions(std::int64_t period);
    std::chrono::sys_days nextCandidate(std::chrono::sys_days day) const;

    Frequency frequency_ = Frequency::Daily;
    int interval_ = 1;
    int weekStart_ = 1;
    std::optional<int> count_;
    std::optional<Moment> until_;
    std::uint16_t months_ = 0;           ///< bit N for month N; 0 for all
    std::uint32_t monthDays_ = 0;        ///< bit N for day N
    std::uint32_t monthDaysFromEnd_ = 0; ///< bit N for the N-th day from the end
    std::uint8_t weekdays_ = 0;          ///< bit 0 for Sunday
    std::vector<NumberedWeekday> numberedWeekdays_;
    std::vector<int> positions_;

    std::chrono::sys_days first_;
    std::int64_t firstPeriod_ = 0;
    std::optional<std::chrono::sys_days> lastCounted_;
    std::optional<std::int64_t> selectedPeriod_;
    std::vector<std::chrono::sys_days> selectedDays_; ///< the days at positions_ in selectedPeriod_
};

} // namespace extras::icalendar
