#include "extras/HalvexDateCalMenu/CalendarSettings.h"

#include "extras/clock/ClockFormat.h"
#include "platform/Log.h"

#include <algorithm>
#include <array>
#include <sstream>
#include <utility>

using std::chrono::weekday;

namespace extras {
namespace {

template <class Value>
using Choice = std::pair<std::string_view, Value>;

constexpr std::string_view kLocale = "locale";
constexpr std::array<std::string_view, 7> kWeekdays{"sunday",   "monday", "tuesday", "wednesday",
                                                    "thursday", "friday", "saturday"};

/// Returns the value of a choice, or std::nullopt if it is not in the table.
template <class Table, class Value = typename Table::value_type::second_type>
std::optional<Value> find(const Table& table, std::string_view name) {
    const auto entry = std::ranges::find(table, name, &Table::value_type::first);
    if (entry == table.end())
        return std::nullopt;
    return std::optional<Value>(std::in_place, entry->second);
}

std::optional<weekday> weekdayNamed(std::string_view name) {
    const auto* const found = std::ranges::find(kWeekdays, name);
    if (found == kWeekdays.end())
        return std::nullopt;
    return weekday(static_cast<unsigned>(found - kWeekdays.begin()));
}

/// Returns the weekdays in a list with spaces between them, or none for "none".
std::optional<std::bitset<7>> weekdaysNamed(const std::string& names) {
    std::bitset<7> weekdays;
    if (names == "none")
        return weekdays;
    std::istringstream stream(names);
    for (std::string name; stream >> name;) {
        const auto day = weekdayNamed(name);
        if (!day)
            return std::nullopt;
        weekdays.set(day->c_encoding());
    }
    return weekdays.any() ? std::optional(weekdays) : std::nullopt;
}

} // namespace

CalendarSettingsReader::CalendarSettingsReader(platform::Preferences preferences)
    : preferences_(std::move(preferences)) {}

CalendarSettings CalendarSettingsReader::read() {
    using Title = CalendarSettings::Title;
    constexpr std::array<Choice<Title>, 3> kTitles{
        {{"icon", Title::Icon}, {"date", Title::Date}, {"both", Title::IconAndDate}}};
    CalendarSettings settings;
    const auto title = find(kTitles, preferences_.string("Title", "icon"));
    if (!title)
        logInvalid("Title", "it is not icon, date or both");
    settings.title = title.value_or(Title::Icon);
    settings.format = format("Format", clock_format::date());
    settings.copyFormat = format("CopyFormat", clock_format::fullDate());
    settings.rules = rules();

    const std::array<Choice<std::optional<WeekNumbering>>, 3> numberings{
        {{kLocale, settings.rules.numbering}, {"iso", kIsoWeeks}, {"off", std::nullopt}}};
    const auto numbering = find(numberings, preferences_.string("WeekNumbers", kLocale));
    if (!numbering)
        logInvalid("WeekNumbers", "it is not locale, iso or off");
    settings.weekNumbers = numbering.value_or(settings.rules.numbering);

    const std::int64_t months = preferences_.integer("Months", 1);
    if (months != 1 && months != 2)
        logInvalid("Months", "it is not 1 or 2");
    settings.months = months == 2 ? 2 : 1;
    settings.program = preferences_.string("Program");
    return settings;
}

std::string CalendarSettingsReader::format(std::string_view key, const std::string& fallback) {
    const std::string format = preferences_.string(key, fallback);
    if (clock_format::isUsable(format))
        return clock_format::expanded(format);
    logInvalid(key, "it is not a usable format");
    return fallback;
}

WeekRules CalendarSettingsReader::rules() {
    WeekRules rules = localeWeekRules();
    const std::string first = preferences_.string("FirstWeekday", kLocale);
    if (const auto day = weekdayNamed(first))
        rules.numbering.firstWeekday = *day;
    else if (first != kLocale)
        logInvalid("FirstWeekday", "it is not locale or a weekday in English, such as monday");

    const std::string weekend = preferences_.string("Weekend", kLocale);
    if (const auto named = weekdaysNamed(weekend))
        rules.weekend = *named;
    else if (weekend != kLocale)
        logInvalid("Weekend", "it is not locale, none or weekdays in English");
    return rules;
}

void CalendarSettingsReader::logInvalid(std::string_view key, const std::string& reason) {
    if (logged_.insert(std::string(key) + reason).second)
        platform::logLine("cannot use preference %@ of the calendar: %@", key, reason);
}

} // namespace extras
