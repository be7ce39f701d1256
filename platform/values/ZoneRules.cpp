#include "platform/values/ZoneRules.h"

#include "platform/values/ZoneTable.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace platform {
namespace {

/// Adds without overflow: stops at the limits.
std::int64_t saturatedSum(std::int64_t one, std::int64_t other) {
    std::int64_t sum = 0;
    if (!__builtin_add_overflow(one, other, &sum))
        return sum;
    return other < 0 ? INT64_MIN : INT64_MAX;
}

/// More than any offset from UTC.
constexpr std::int64_t kTwoDays = 2 * 86'400;

int dayOfYear(const CivilTime& time) {
    const auto first = secondsSince1970({.year = time.year});
    const auto day = secondsSince1970({time.year, time.month, time.day});
    return first && day ? static_cast<int>((*day - *first) / 86'400) : 0;
}

} // namespace

std::size_t ZoneTable::upperBound(std::int64_t time) const {
    const auto found = std::ranges::upper_bound(transitions, time, {}, &Transition::time);
    return static_cast<std::size_t>(found - transitions.begin());
}

const ZoneOffset& ZoneTable::offsetBefore(std::size_t transition) const {
    return offsets[transition == 0 ? 0 : transitions[transition - 1].offset];
}

bool ZoneTable::isChange(std::size_t transition) const {
    return offsetBefore(transition) != offsets[transitions[transition].offset];
}

bool ZoneTable::isRecurring(std::int64_t time) const {
    return recurring && (transitions.empty() || time >= transitions.back().time);
}

const ZoneOffset& ZoneTable::offsetAt(std::int64_t time) const {
    return isRecurring(time) ? recurring->offsetAt(time) : offsetBefore(upperBound(time));
}

std::optional<std::int64_t> ZoneTable::nextChange(std::int64_t time) const {
    for (std::size_t i = upperBound(time); i < transitions.size(); ++i)
        if (isChange(i))
            return transitions[i].time;
    if (!recurring)
        return std::nullopt;
    return recurring->nextChange(transitions.empty() ? time
                                                     : std::max(time, transitions.back().time));
}

std::optional<std::int64_t> ZoneTable::previousChange(std::int64_t time) const {
    if (isRecurring(time)) {
        const auto change = recurring->previousChange(time);
        if (change && (transitions.empty() || *change > transitions.back().time))
            return change;
    }
    for (std::size_t i = upperBound(time); i > 0; --i)
        if (isChange(i - 1))
            return transitions[i - 1].time;
    return std::nullopt;
}

std::int64_t ZoneTable::timeOf(std::int64_t instant) const {
    const auto next = std::ranges::upper_bound(leapSeconds, instant, {}, &LeapSecond::instant);
    return next == leapSeconds.begin() ? instant
                                       : saturatedSum(instant, -std::prev(next)->correction);
}

std::int64_t ZoneTable::instantOf(std::int64_t time) const {
    std::int64_t instant = time;
    for (const LeapSecond& leap : leapSeconds) {
        const std::int64_t corrected = saturatedSum(time, leap.correction);
        if (corrected <= leap.instant)
            break;
        instant = corrected;
    }
    return instant;
}

bool ZoneTable::isLeapSecond(std::int64_t instant) const {
    std::int64_t previous = 0;
    for (const auto& [inserted, correction] : leapSeconds) {
        if (inserted == instant)
            return correction > previous;
        previous = correction;
    }
    return false;
}

ZoneRules::ZoneRules() : ZoneRules(std::make_shared<const ZoneTable>()) {}

ZoneRules::ZoneRules(std::shared_ptr<const ZoneTable> table) : table_(std::move(table)) {}

std::optional<ZoneRules> ZoneRules::parse(std::string_view text) {
    auto recurring = RecurringRules::parse(text);
    if (!recurring)
        return std::nullopt;
    auto table = std::make_shared<ZoneTable>();
    table->recurring = std::move(recurring);
    return ZoneRules(std::move(table));
}

ZoneOffset ZoneRules::offsetAt(std::int64_t instant) const {
    return table_->offsetAt(table_->timeOf(instant));
}

CivilTime ZoneRules::localTime(std::int64_t instant) const {
    const std::int64_t time = table_->timeOf(instant);
    CivilTime local = civilTime(time, table_->offsetAt(time).secondsFromUTC);
    if (table_->isLeapSecond(instant))
        ++local.second;
    return local;
}

std::optional<std::tm> ZoneRules::brokenDownTime(std::int64_t instant) const {
    constexpr int kFirstYear = 1900;
    const ZoneOffset& offset = table_->offsetAt(table_->timeOf(instant));
    const CivilTime local = localTime(instant);
    if (local.year - kFirstYear < INT_MIN || local.year - kFirstYear > INT_MAX)
        return std::nullopt;
    std::tm result{};
    result.tm_sec = local.second;
    result.tm_min = local.minute;
    result.tm_hour = local.hour;
    result.tm_mday = local.day;
    result.tm_mon = local.month - 1;
    result.tm_year = static_cast<int>(local.year - kFirstYear);
    result.tm_wday = weekday(local);
    result.tm_yday = dayOfYear(local);
    result.tm_isdst = offset.isDaylightSaving ? 1 : 0;
    result.tm_gmtoff = offset.secondsFromUTC;
    result.tm_zone = offset.abbreviation.c_str();
    return result;
}

std::optional<ZoneTransition> ZoneRules::transitionAt(std::optional<std::int64_t> time) const {
    if (!time || *time == INT64_MIN)
        return std::nullopt;
    return ZoneTransition{table_->instantOf(*time), table_->offsetAt(*time - 1),
                          table_->offsetAt(*time)};
}

std::optional<ZoneTransition> ZoneRules::nextTransition(std::int64_t instant) const {
    return transitionAt(table_->nextChange(table_->timeOf(instant)));
}

std::optional<ZoneTransition> ZoneRules::previousTransition(std::int64_t instant) const {
    return transitionAt(table_->previousChange(table_->timeOf(instant)));
}

std::optional<LocalInstants> ZoneRules::instantsOf(const CivilTime& local) const {
    using Kind = LocalInstants::Kind;
    const auto wanted = secondsSince1970(local);
    if (!wanted)
        return std::nullopt;
    const std::int64_t end = saturatedSum(*wanted, kTwoDays);
    std::int64_t from = saturatedSum(*wanted, -kTwoDays);
    std::optional<LocalInstants> result;
    while (from < end) {
        const std::int64_t until = table_->nextChange(from).value_or(INT64_MAX);
        const std::int32_t offset = table_->offsetAt(from).secondsFromUTC;
        const std::int64_t time = saturatedSum(*wanted, -std::int64_t{offset});
        const bool isExact = time != INT64_MAX && time != INT64_MIN;
        const bool isInside = isExact && time >= from && time < until;
        const bool isSkipped =
            isExact && !result && time >= until &&
            *wanted < saturatedSum(until, table_->offsetAt(until).secondsFromUTC);
        if (isInside && result && result->kind != Kind::Skipped)
            result = {{Kind::Repeated, result->first, table_->instantOf(time)}};
        else if (isInside)
            result = {{Kind::Unique, table_->instantOf(time), table_->instantOf(time)}};
        else if (isSkipped)
            result = {{Kind::Skipped, table_->instantOf(until), table_->instantOf(until)}};
        from = until;
    }
    return result;
}

} // namespace platform
