#include "extras/HalvexTimeMenu/ClockTitle.h"

#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"
#include "platform/Clock.h"
#include "platform/TimeZones.h"

#include <algorithm>
#include <optional>

using namespace platform;
using extras::WorldClock;
namespace clock_format = extras::clock_format;

namespace {

constexpr const char* kLocationGap = "   ";

// These characters set the direction of what follows, up to the end: from right to left, or that of
// the text itself.
constexpr const char* kRightToLeft = "\u2067";
constexpr const char* kIsolated = "\u2068";
constexpr const char* kEnd = "\u2069";

std::string barFormat(const WorldClock& clock) {
    return clock.barFormat.empty() ? clock_format::time() : clock.barFormat;
}

std::optional<std::string> timeIn(const WorldClock& clock, std::int64_t now) {
    const auto zone = timeZones().zone(clock.zoneName);
    const auto moment = zone ? zone->brokenDownTime(now) : std::nullopt;
    if (!moment)
        return std::nullopt;
    return clock_format::text(barFormat(clock), *moment);
}

/// Returns "UTC" unless @p format shows the zone.
std::string zoneSuffix(const std::string& format) {
    return clock_format::bare(format).find("%Z") == std::string::npos ? " UTC" : "";
}

} // namespace

void ClockTitle::setLocations(const std::vector<WorldClock>& clocks) {
    locations_.clear();
    for (const WorldClock& clock : clocks)
        if (clock.isInBar && !clock.zoneName.empty() && locations_.size() < kMostLocations)
            locations_.push_back(clock);
}

bool ClockTitle::showsSeconds() const {
    return clock_format::showsSeconds(format) || clock_format::showsSeconds(dateFormat) ||
           std::ranges::any_of(locations_, [](const WorldClock& clock) {
               return clock_format::showsSeconds(clock.barFormat);
           });
}

TitleColumn ClockTitle::timeColumn(std::int64_t now) const {
    const ZoneRules utc; // tm_zone refers to it
    const std::tm moment =
        showsUTC ? utc.brokenDownTime(now).value_or(std::tm{}) : systemClock().localTime(now);
    TitleColumn column{clock_format::text(dateFormat, moment), clock_format::text(format, moment)};
    if (showsUTC)
        column.lower += zoneSuffix(format);
    return column;
}

std::string ClockTitle::timeText(std::int64_t now) const {
    const TitleColumn column = timeColumn(now);
    return column.upper.empty() ? column.lower : column.upper + ' ' + column.lower;
}

std::string ClockTitle::text(std::int64_t now) const {
    const bool isMirrored = extras::isRightToLeft();
    const auto part = [&](const std::string& text) {
        return isMirrored ? kIsolated + text + kEnd : text;
    };
    std::string title = part(timeText(now));
    for (const WorldClock& clock : locations_)
        if (const auto time = timeIn(clock, now))
            title +=
                kLocationGap + part(clock.barFormat.empty() ? clock.name + ' ' + *time : *time);
    return isMirrored ? kRightToLeft + title + kEnd : title;
}

std::vector<TitleColumn> ClockTitle::columns(std::int64_t now) const {
    std::vector<TitleColumn> result{timeColumn(now)};
    for (const WorldClock& clock : locations_)
        if (const auto time = timeIn(clock, now))
            result.push_back({clock.name, *time});
    if (extras::isRightToLeft())
        std::ranges::reverse(result);
    return result;
}
