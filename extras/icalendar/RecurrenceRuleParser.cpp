#include "extras/icalendar/RecurrenceRule.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
#include <utility>

namespace extras::icalendar {
namespace {

constexpr std::size_t kMaximumRuleBytes = 2000;

std::optional<int> parseNumber(std::string_view text, int minimum, int maximum) {
    if (text.starts_with('+'))
        text.remove_prefix(1);
    int number = 0;
    const char* const end = text.data() + text.size();
    const auto [stop, error] = std::from_chars(text.data(), end, number);
    if (error != std::errc() || stop != end || number < minimum || number > maximum)
        return std::nullopt;
    return number;
}

/// Passes each number of a list from -maximum to maximum, except 0, to @p use.
template <class Use>
bool readNumbers(std::string_view list, int maximum, Use use) {
    while (!list.empty()) {
        const auto number = parseNumber(takePart(list, ','), -maximum, maximum);
        if (!number || *number == 0)
            return false;
        use(*number);
    }
    return true;
}

std::optional<int> parseWeekday(std::string_view text) {
    constexpr std::array<std::string_view, 7> kNames{"SU", "MO", "TU", "WE", "TH", "FR", "SA"};
    for (int i = 0; i < 7; ++i)
        if (isSame(text, kNames[static_cast<std::size_t>(i)]))
            return i;
    return std::nullopt;
}

} // namespace

struct RecurrenceRule::Parser {
    RecurrenceRule rule;
    bool hasFrequency = false;

    using Reader = bool (Parser::*)(std::string_view);
    static Reader readerOf(std::string_view name);

    bool readFrequency(std::string_view value);
    bool readInterval(std::string_view value);
    bool readCount(std::string_view value);
    bool readUntil(std::string_view value);
    bool readWeekdays(std::string_view list);
    bool readMonthDays(std::string_view list);
    bool readMonths(std::string_view list);
    bool readPositions(std::string_view list);
    bool readWeekStart(std::string_view value);
};

RecurrenceRule::Parser::Reader RecurrenceRule::Parser::readerOf(std::string_view name) {
    static constexpr std::array<std::pair<std::string_view, Reader>, 9> kReaders{{
        {"FREQ", &Parser::readFrequency},
        {"INTERVAL", &Parser::readInterval},
        {"COUNT", &Parser::readCount},
        {"UNTIL", &Parser::readUntil},
        {"BYDAY", &Parser::readWeekdays},
        {"BYMONTHDAY", &Parser::readMonthDays},
        {"BYMONTH", &Parser::readMonths},
        {"BYSETPOS", &Parser::readPositions},
        {"WKST", &Parser::readWeekStart},
    }};
    for (const auto& [known, reader] : kReaders)
        if (isSame(name, known))
            return reader;
    return nullptr;
}

bool RecurrenceRule::Parser::readFrequency(std::string_view value) {
    static constexpr std::array<std::pair<std::string_view, Frequency>, 4> kFrequencies{{
        {"DAILY", Frequency::Daily},
        {"WEEKLY", Frequency::Weekly},
        {"MONTHLY", Frequency::Monthly},
        {"YEARLY", Frequency::Yearly},
    }};
    for (const auto& [name, frequency] : kFrequencies)
        if (isSame(value, name)) {
            rule.frequency_ = frequency;
            hasFrequency = true;
        }
    return hasFrequency;
}

bool RecurrenceRule::Parser::readInterval(std::string_view value) {
    const auto interval = parseNumber(value, 1, INT32_MAX);
    rule.interval_ = interval.value_or(1);
    return interval.has_value();
}

bool RecurrenceRule::Parser::readCount(std::string_view value) {
    rule.count_ = parseNumber(value, 1, INT32_MAX);
    return rule.count_.has_value();
}

bool RecurrenceRule::Parser::readUntil(std::string_view value) {
    rule.until_ = parseMoment(value, Zones::kLocal);
    return rule.until_.has_value();
}

bool RecurrenceRule::Parser::readWeekdays(std::string_view list) {
    while (!list.empty()) {
        const std::string_view part = takePart(list, ',');
        const std::size_t split = part.size() - std::min<std::size_t>(part.size(), 2);
        const auto weekday = parseWeekday(part.substr(split));
        if (!weekday)
            return false;
        if (split == 0) {
            rule.weekdays_ =
                static_cast<std::uint8_t>(rule.weekdays_ | RecurrenceRule::bit(*weekday));
            continue;
        }
        const auto add = [&](int number) { rule.numberedWeekdays_.push_back({*weekday, number}); };
        if (!readNumbers(part.substr(0, split), 53, add))
            return false;
    }
    return true;
}

bool RecurrenceRule::Parser::readMonthDays(std::string_view list) {
    return readNumbers(list, 31, [this](int number) {
        (number > 0 ? rule.monthDays_ : rule.monthDaysFromEnd_) |=
            RecurrenceRule::bit(std::abs(number));
    });
}

bool RecurrenceRule::Parser::readMonths(std::string_view list) {
    bool isPositive = true;
    return readNumbers(list, 12,
                       [&](int number) {
                           isPositive = isPositive && number > 0;
                           rule.months_ = static_cast<std::uint16_t>(
                               rule.months_ | RecurrenceRule::bit(std::abs(number)));
                       }) &&
           isPositive;
}

bool RecurrenceRule::Parser::readPositions(std::string_view list) {
    return readNumbers(list, 366, [this](int number) { rule.positions_.push_back(number); });
}

bool RecurrenceRule::Parser::readWeekStart(std::string_view value) {
    const auto weekday = parseWeekday(value);
    rule.weekStart_ = weekday.value_or(1);
    return weekday.has_value();
}

std::optional<RecurrenceRule> RecurrenceRule::parse(std::string_view text, std::string& reason) {
    Parser parser;
    if (text.size() > kMaximumRuleBytes) {
        reason = "a rule has more than " + std::to_string(kMaximumRuleBytes) + " bytes";
        return std::nullopt;
    }
    while (!text.empty()) {
        std::string_view value = takePart(text, ';');
        const std::string_view name = takePart(value, '=');
        const auto reader = Parser::readerOf(name);
        if (!reader || !(parser.*reader)(value)) {
            reason =
                std::string(name) + (reader ? '=' + std::string(value) : "") + " is not supported";
            return std::nullopt;
        }
    }
    const RecurrenceRule& rule = parser.rule;
    const bool hasNumbers = !rule.numberedWeekdays_.empty();
    if (!parser.hasFrequency)
        reason = "a rule has no FREQ";
    else if (hasNumbers && rule.frequency_ < Frequency::Monthly)
        reason = "numbers in BYDAY are not supported for days and weeks";
    else
        return parser.rule;
    return std::nullopt;
}

} // namespace extras::icalendar
