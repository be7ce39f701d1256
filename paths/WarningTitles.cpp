#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <array>

using platform::propertyLists;
using Array = platform::PropertyList::Array;

namespace {

/// Returns a folder's path and creates the folder. Called only when that folder is searched.
using Folder = std::string (*)();

std::string userFolder() {
    return HalvexFilePaths::ovxGetUserApplSupportFolder();
}
constexpr Folder kUserProductFolder = HalvexFilePaths::ovxGetUsersHalvexProSupportDir;
constexpr Folder kLocalFolder = HalvexFilePaths::ovxGetLocalHalvexApplSupportFolder;

std::string listPath(Folder folder, const std::string& name) {
    return platform::appendingPathComponent(folder(),
                                            platform::appendingPathExtension(name, plistFile));
}

} // namespace

Array HalvexFilePaths::loadWarnMeTitles(const std::string& name, const std::string& defaultPath) {
    return platform::guardedOperation([&]() -> Array {
        // The product folder is deliberately tried twice; this does no harm.
        for (const Folder folder : {kUserProductFolder, Folder(userFolder), kUserProductFolder}) {
            if (auto list = propertyLists().readArray(listPath(folder, name)))
                return std::move(*list);
        }
        const std::string localPath = listPath(kLocalFolder, name);
        if (auto list = propertyLists().readArray(localPath))
            return std::move(*list);
        if (platform::fileManager().isFile(localPath))
            platform::logLine("no global custom data loaded for system  %@", name);
        if (auto list = propertyLists().readArray(defaultPath))
            return std::move(*list);
        platform::logLine("no default data loaded for %@", name);
        platform::logLine("no data loaded for %@", name);
        return {};
    });
}

bool HalvexFilePaths::hasCustomWarnMeFile(const std::string& name) {
    return platform::guardedOperation([&] {
        constexpr std::array<Folder, 3> kFolders{userFolder, kUserProductFolder, kLocalFolder};
        return std::ranges::any_of(kFolders, [&](Folder folder) {
            return platform::fileManager().isFile(listPath(folder, name));
        });
    });
}
