#include "menuextras/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <array>

using Array = platform::PropertyList::Array;

namespace {

/// The folders are created by whoever asks for their paths, so each is asked for in its turn.
using Folder = std::string (*)();

std::string userFolder() {
    return HalvexFilePaths::ovxGetUserApplSupportFolder();
}
constexpr Folder kUserProductFolder = HalvexFilePaths::ovxGetUsersHalvexProSupportDir;
constexpr Folder kLocalFolder = HalvexFilePaths::ovxGetLocalHalvexApplSupportFolder;

/// The list's file in @p folder; nothing when none is there.
std::optional<std::string> listFile(Folder folder, const std::string& name) {
    std::string path = platform::appendingPathComponent(
        folder(), platform::appendingPathExtension(name, plistFile));
    bool isDirectory = false;
    if (!platform::fileManager().fileExists(path, &isDirectory) || isDirectory)
        return std::nullopt;
    return path;
}

} // namespace

Array HalvexFilePaths::loadWarnMeTitles(const std::string& name, const std::string& defaultPath) {
    // The second look at the product folder is meant, and does no harm.
    for (const Folder folder : {kUserProductFolder, Folder(userFolder), kUserProductFolder}) {
        const auto file = listFile(folder, name);
        if (auto list = file ? platform::propertyLists().readArray(*file) : std::nullopt)
            return std::move(*list);
    }
    if (const auto file = listFile(kLocalFolder, name)) {
        if (auto list = platform::propertyLists().readArray(*file))
            return std::move(*list);
        platform::logLine("no global custom data loaded for system  %@", name);
    }
    if (auto list = platform::propertyLists().readArray(defaultPath))
        return std::move(*list);
    platform::logLine("no default data loaded for %@", name);
    platform::logLine("no data loaded for %@", name);
    return {};
}

bool HalvexFilePaths::hasCustomWarnMeFile(const std::string& name) {
    constexpr std::array<Folder, 3> kFolders{userFolder, kUserProductFolder, kLocalFolder};
    return std::ranges::any_of(kFolders,
                               [&](Folder folder) { return listFile(folder, name).has_value(); });
}
