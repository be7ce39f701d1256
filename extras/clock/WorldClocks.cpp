#include "extras/clock/WorldClocks.h"

#include "extras/clock/ClockFormat.h"
#include "extras/clock/LocationEditing.h"
#include "extras/shared/Sun.h"
#include "extras/shared/Texts.h"
#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/TimeZones.h"
#include "platform/base/PathStrings.h"

#include <cstdlib>
#include <utility>

using namespace platform;
using paths::WorldLocation;

namespace extras {
namespace {

std::int64_t dayNumber(CivilTime time) {
    time.hour = time.minute = time.second = 0;
    return secondsSince1970(time).value_or(0) / 86400;
}

/// Returns @p sign so that it is shown to the left of the number after it. Between texts that are
/// written from right to left, it needs a left-to-right mark.
std::string signText(const char* sign) {
    return (isRightToLeft() ? "\u200E" : "") + std::string(sign);
}
std::string signText(std::int64_t number) {
    return signText(number < 0 ? "−" : "+");
}

WorldClock clockOf(const WorldLocation& location) {
    std::string format = location.barFormat();
    if (!format.empty() && !clock_format::isUsable(format)) {
        logLine("cannot use the clock format of %@ in the bar: it is not a usable format",
                location.displayName());
        format.clear();
    }
    return {location.displayName(), location.zoneName(), location.coordinates(), location.isInBar(),
            format};
}

std::string netLocationCache() {
    return appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(),
                                  HalvexNetLocations);
}

} // namespace

std::optional<WorldTime> worldTime(const WorldClock& clock, std::int64_t instant) {
    const auto zone = clock.zoneName.empty() ? std::nullopt : timeZones().zone(clock.zoneName);
    const auto moment = zone ? zone->brokenDownTime(instant) : std::nullopt;
    if (!moment)
        return std::nullopt;
    const ZoneRules local = timeZones().local();
    WorldTime result;
    result.time = clock_format::text(clock_format::time(), *moment);
    result.dayDifference =
        static_cast<int>(dayNumber(zone->localTime(instant)) - dayNumber(local.localTime(instant)));
    result.secondsFromUTC = zone->offsetAt(instant).secondsFromUTC;
    result.secondsAhead = result.secondsFromUTC - local.offsetAt(instant).secondsFromUTC;
    if (clock.coordinates)
        result.isDay = sun::isUp(*clock.coordinates, instant);
    return result;
}

std::string dayDifferenceText(int days) {
    return days == 0 ? "" : signText(days) + std::to_string(std::abs(days));
}

std::string offsetText(std::int32_t seconds) {
    const std::int32_t minutes = std::abs(seconds) / 60;
    std::string text =
        (minutes == 0 ? signText("±") : signText(seconds)) + std::to_string(minutes / 60);
    if (const std::string rest = std::to_string(minutes % 60); rest != "0")
        text += (rest.size() == 1 ? ":0" : ":") + rest;
    return fill(tr("%1 h"), {text});
}

std::string timeWithDay(const WorldTime& time) {
    const std::string days = dayDifferenceText(time.dayDifference);
    return days.empty() ? time.time : time.time + ' ' + days;
}

WorldClocks::WorldClocks(std::function<void()> changeHandler)
    : changeHandler_(std::move(changeHandler)) {}

const std::vector<WorldClock>& WorldClocks::list() {
    load();
    return clocks_;
}

const std::vector<WorldLocation>& WorldClocks::records() {
    load();
    return records_;
}

const std::string& WorldClocks::error() {
    load();
    return error_;
}

bool WorldClocks::exist() {
    return locations::hasFile() || HalvexFilePaths::HalvexExistsNetLocation();
}

void WorldClocks::load() {
    if (std::exchange(isLoaded_, true))
        return;
    watchFiles();
    clocks_.clear();
    records_.clear();
    const std::string before = std::exchange(error_, locations::fileError());
    if (!error_.empty() && error_ != before)
        logLine("cannot read the locations in %@: %@", locations::locationFile(), error_);
    for (auto& record : locations::chosenRecords()) {
        WorldLocation location(std::move(record));
        if (location.displayName().empty())
            continue;
        clocks_.push_back(clockOf(location));
        records_.push_back(std::move(location));
    }
}

void WorldClocks::watchFiles() {
    if (!watches_.empty())
        return;
    const auto changed = [this] {
        isLoaded_ = false;
        if (changeHandler_)
            changeHandler_();
    };
    for (const std::string& path : {locations::locationFile(), netLocationCache()})
        watches_.push_back(fileManager().watchFile(path, changed));
}

} // namespace extras
