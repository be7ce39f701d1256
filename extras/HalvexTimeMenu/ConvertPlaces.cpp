#include "extras/HalvexTimeMenu/ConvertPlaces.h"

#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"
#include "platform/TimeZones.h"

#include <algorithm>

using namespace platform;
using extras::fill;
using extras::tr;
using extras::WorldClock;
namespace clock_format = extras::clock_format;

namespace {

constexpr const char* kLeftToRight = "\u2066";
constexpr const char* kEndOfDirection = "\u2069";

/// Returns the city in the name of a zone: "Port of Spain" for "America/Port_of_Spain".
std::string cityOf(const std::string& zoneName) {
    std::string city = zoneName.substr(zoneName.rfind('/') + 1);
    std::ranges::replace(city, '_', ' ');
    return city;
}

std::string localName() {
    const std::string city = cityOf(timeZones().localName());
    return city.empty() ? tr("Local time") : city;
}

} // namespace

std::optional<ZoneRules> ConvertPlace::zone() const {
    if (!clock)
        return timeZones().local();
    return clock->zoneName.empty() ? std::nullopt : timeZones().zone(clock->zoneName);
}

std::vector<ConvertPlace> convertPlaces(const std::vector<WorldClock>& clocks) {
    const std::string city = cityOf(timeZones().localName());
    std::vector<ConvertPlace> places{
        {city.empty() ? tr("Local time") : fill(tr("Local time (%1)"), {city})}};
    for (const WorldClock& clock : clocks)
        places.push_back({clock.name, clock});
    return places;
}

ListRow convertRow(const ConvertPlace& place, std::int64_t instant, const DayImages& images) {
    if (!place.clock)
        return {place.name, zoneText(clock_format::time(), timeZones().local(), instant),
                images.unknown};
    const auto time = extras::worldTime(*place.clock, instant);
    if (!time)
        return {place.name, tr("no usable time zone"), images.unknown};
    std::string days = extras::dayDifferenceText(time->dayDifference);
    if (extras::isRightToLeft())
        days = kLeftToRight + days + kEndOfDirection; // keeps the sign before the digit
    return {place.name, time->dayDifference == 0 ? time->time : days + "   " + time->time,
            !time->isDay   ? images.unknown
            : *time->isDay ? images.day
                           : images.night};
}

std::string convertedText(const std::vector<ConvertPlace>& places, std::int64_t instant) {
    const std::string localZone = timeZones().localName();
    const bool listsLocalZone = std::ranges::any_of(places, [&](const ConvertPlace& place) {
        return place.clock && !localZone.empty() && place.clock->zoneName == localZone;
    });
    std::string result;
    const auto append = [&](const std::string& name, const std::string& time) {
        result += (result.empty() ? "" : ", ") + name + ' ' + time;
    };
    for (const ConvertPlace& place : places) {
        if (!place.clock && !listsLocalZone)
            append(localName(), zoneText(clock_format::time(), timeZones().local(), instant));
        const auto time = place.clock ? extras::worldTime(*place.clock, instant) : std::nullopt;
        if (time)
            append(place.name, extras::timeWithDay(*time));
    }
    return result;
}

std::string zoneText(const std::string& format, const ZoneRules& zone, std::int64_t instant) {
    const auto moment = zone.brokenDownTime(instant);
    return moment ? clock_format::text(format, *moment) : "";
}
