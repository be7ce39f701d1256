#include "identifiers/ExportedIdentifiers.h"
#include "paths/LocationRecords.h"
#include "paths/PreferencePane.h"
#include "paths/ovxPaths.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"

#include <utility>

using platform::appendingPathComponent;
using platform::fileManager;
using platform::logLine;
using platform::propertyLists;
using Array = platform::PropertyList::Array;

namespace {

std::string inUserProductFolder(const char* name) {
    return appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(), name);
}

void migrateFromOldPaths(const std::string& firstOld, const std::string& secondOld,
                         const std::string& path) {
    const std::string& old = fileManager().isFile(firstOld) ? firstOld : secondOld;
    // The line names the two old paths, whichever was moved, and never the new one.
    if (fileManager().isFile(old) && fileManager().moveFile(old, path))
        logLine("Moved Locations from Path = %@ to %@", firstOld, secondOld);
}

/// Returns the pane that this process has loaded. If there is no such pane, logs this and returns
/// the installed one.
std::shared_ptr<platform::Bundle> preferencePane() {
    if (auto loaded = paths::loadedPreferencePane())
        return loaded;
    logLine("LocationList  thisBundle nil");
    return paths::installedPreferencePane();
}

std::optional<Array> defaultList() {
    const auto pane = preferencePane();
    const auto resource = pane ? pane->pathForResource("LocationsConfig", "plist") : std::nullopt;
    if (!resource) {
        logLine("bug -- missing 'LocationsConfig.plist' in bundle %@",
                pane ? std::optional(pane->bundlePath()) : std::nullopt);
        return Array();
    }
    auto list = propertyLists().readArray(*resource);
    if (list)
        logLine("Default locations loaded");
    else
        logLine("Default locations failed to load at %@", *resource);
    return list;
}

bool writeList(const std::string& path, const Array& list) {
    if (propertyLists().writeArray(path, list))
        return true;
    logLine("Unable to write: %@", path);
    platform::systemLog().beep();
    return false;
}

} // namespace

std::optional<Array> HalvexFilePaths::HalvexLoadLocationFile() {
    return platform::guardedOperation([&] {
        const std::string firstOld = HalvexOldPathLocationFile();
        const std::string secondOld = fileManager().resolvingSymbolicLinks(
            appendingPathComponent(ovxGetUserApplSupportFolder(), HalvexLocation));
        const std::string path = inUserProductFolder(HalvexLocation);
        migrateFromOldPaths(firstOld, secondOld, path);
        auto list = propertyLists().readArray(path);
        return mergeNetLocation(list ? std::move(list) : defaultList());
    });
}

std::optional<Array> HalvexFilePaths::mergeNetLocation(std::optional<Array> list) {
    return platform::guardedOperation([&]() -> std::optional<Array> {
        const std::string path = inUserProductFolder(HalvexNetLocations);
        auto cached = list ? propertyLists().readArray(path) : std::nullopt;
        if (!cached || cached->empty())
            return std::move(list);
        paths::MergedRecords merged = paths::mergeRecords(std::move(*list), std::move(*cached));
        if (merged.duplicates != 0)
            logLine("%d duplicates locations found in subscription", merged.duplicates);
        return std::move(merged.records);
    });
}

bool HalvexFilePaths::HalvexSaveLocationTable(Array list) {
    return platform::guardedOperation([&] {
        const std::string path = inUserProductFolder(HalvexLocation);
        logLine("Saving Halvex locations: %@ (%d)", path, list.size());
        const paths::SplitRecords records = paths::splitRecords(std::move(list));
        HalvexSaveCacheNetLocation(records.net);
        return writeList(path, records.own);
    });
}

bool HalvexFilePaths::HalvexSaveCacheNetLocation(const Array& records) {
    return platform::guardedOperation([&] {
        if (records.empty())
            return true;
        const std::string path = inUserProductFolder(HalvexNetLocations);
        logLine("Saving net locations cache: %@ (%d)", path, records.size());
        return writeList(path, records);
    });
}

bool HalvexFilePaths::HalvexExistsNetLocation() {
    return platform::guardedOperation(
        [&] { return fileManager().isFile(inUserProductFolder(HalvexNetLocations)); });
}

bool HalvexFilePaths::HalvexRemoveNetLocation() {
    return platform::guardedOperation([&] {
        const std::string path = inUserProductFolder(HalvexNetLocations);
        return !fileManager().isFile(path) || fileManager().removeFile(path);
    });
}
