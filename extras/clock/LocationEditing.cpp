#include "extras/clock/LocationEditing.h"

#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"
#include "prefs/HalvexPrefsTools.h"

#include <algorithm>
#include <array>
#include <utility>

using platform::appendingPathComponent;
using platform::fileManager;
using platform::propertyLists;
using Array = platform::PropertyList::Array;
using paths::WorldLocation;

namespace extras::locations {
namespace {

bool isNet(const platform::PropertyList& record) {
    return WorldLocation(record).isNet();
}

auto find(Array& records, const WorldLocation& location) {
    return std::ranges::find(records, location.record());
}

/// Reads the list, changes it with @p change, and writes it if that returns true.
template <class Change>
bool edit(const Change& change) {
    ovxPaths::ovxMakeDirIfNeeded(HalvexFilePaths::ovxGetUserApplSupportFolder());
    if (!fileError().empty())
        return false; // writing would replace what the user may be able to repair
    Array records = chosenRecords();
    return change(records) && HalvexFilePaths::HalvexSaveLocationTable(std::move(records));
}

} // namespace

bool hasFile() {
    const std::array<std::string, 3> paths{
        locationFile(), HalvexFilePaths::HalvexOldPathLocationFile(),
        appendingPathComponent(HalvexFilePaths::ovxGetUserApplSupportFolder(), HalvexLocation)};
    return std::ranges::any_of(paths,
                               [](const std::string& path) { return fileManager().isFile(path); });
}

std::string locationFile() {
    return appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(),
                                  HalvexLocation);
}

std::string fileError() {
    const std::string path = locationFile();
    if (!fileManager().isFile(path))
        return {};
    const auto result = propertyLists().read(path);
    if (!result)
        return result.error.text();
    return result.value->array() ? "" : "not a list";
}

Array chosenRecords() {
    if (!hasFile() && !HalvexFilePaths::HalvexExistsNetLocation())
        return {};
    Array records = HalvexFilePaths::HalvexLoadLocationFile().value_or(Array());
    // Without a usable location file, the other records are those of the default list.
    if (!fileManager().isFile(locationFile()) || !fileError().empty())
        std::erase_if(records, [](const auto& record) { return !isNet(record); });
    return records;
}

std::vector<WorldLocation> knownLocations() {
    const auto pane = HalvexPrefsTools::HalvexPrefsBundle();
    const auto path = pane ? pane->pathForResource("LocationsConfig", "plist") : std::nullopt;
    auto records = path ? propertyLists().readArray(*path) : std::nullopt;
    std::vector<WorldLocation> locations;
    for (auto& record : records.value_or(Array()))
        locations.emplace_back(std::move(record));
    std::erase_if(locations, [](const WorldLocation& one) { return one.city().empty(); });
    return locations;
}

bool add(const WorldLocation& location) {
    return edit([&](Array& records) {
        const bool isKnown = std::ranges::any_of(records, [&](const auto& record) {
            return WorldLocation(record).isSameLocation(location);
        });
        if (!isKnown)
            records.push_back(location.record());
        return !isKnown;
    });
}

bool remove(const WorldLocation& location) {
    return edit([&](Array& records) {
        const auto found = find(records, location);
        if (found == records.end())
            return false;
        records.erase(found);
        return true;
    });
}

bool replace(const WorldLocation& before, const WorldLocation& after) {
    return edit([&](Array& records) {
        const auto found = find(records, before);
        if (found == records.end())
            return false;
        *found = after.record();
        return true;
    });
}

} // namespace extras::locations
