#include "menuextras/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "platform/base/PathStrings.h"

#include <array>

using menuextras::installedFolder;
using platform::appendingPathComponent;
using platform::Bundle;
using platform::FileManager;
using platform::fileManager;
using platform::logLine;

namespace {

constexpr const char* kVersionKey = "CFBundleVersion";

/// The name that a path gives to an installed copy; nothing for a path that would lead to the
/// installed folder itself or out of it.
std::optional<std::string> copyName(const std::string& path) {
    std::string name = platform::lastPathComponent(path);
    if (name.empty() || name == "/" || name == "." || name == "..")
        return std::nullopt;
    return name;
}

bool isThere(const FileManager& files, const std::string& path) {
    return files.fileExists(path) || files.isSymbolicLink(path);
}

/// Whether deleting what is at @p copy would delete @p source.
bool holds(const FileManager& files, const std::string& copy, const std::string& source) {
    const std::string whole = files.resolvingSymbolicLinks(copy);
    const std::string part = files.resolvingSymbolicLinks(source);
    return !files.isSymbolicLink(copy) && (part == whole || part.starts_with(whole + '/'));
}

/// False when there was nothing to delete.
bool deleteOldCopy(FileManager& files, const std::string& copy) {
    if (!isThere(files, copy))
        return false;
    if (!files.removeItem(copy)) {
        logLine("error removing old MenuExtra at %@", copy);
        return true;
    }
    // What is gone from the disk is told only when this process has opened it before.
    const auto old = Bundle::bundleWithPath(copy);
    if (old && old->infoDictionary())
        logLine("replacing MenuExtra (V%@) at %@", old->stringForInfoDictionaryKey(kVersionKey),
                copy);
    return true;
}

bool isReadable(const FileManager& files, const std::string& path) {
    return files.fileExists(path) && files.isReadableFile(path);
}

void removeObsolete(std::int32_t tag, const std::string& identifier) {
    const auto path = HalvexMenuExtraTools::menuExtraInstalledPaths(tag);
    if (HalvexMenuExtraTools::isExtraLoaded(identifier))
        HalvexMenuExtraTools::removeExtra(identifier);
    if (!path || !fileManager().fileExists(*path))
        return;
    if (fileManager().removeItem(*path))
        logLine("removed old MenuExtra at %@", *path);
    else
        logLine("error removing old MenuExtra at %@", *path);
}

template <std::size_t count>
void unloadLoaded(const std::array<const char*, count>& identifiers) {
    for (const char* identifier : identifiers) {
        if (HalvexMenuExtraTools::isExtraLoaded(identifier))
            HalvexMenuExtraTools::removeExtra(identifier);
    }
}

} // namespace

bool HalvexMenuExtraTools::installMenuExtra(const std::string& path) {
    FileManager& files = fileManager();
    const std::string folder = installedFolder();
    if (!files.isWritableFile(folder)) {
        logLine("installMenuExtra: no write access to install Menu Extra at %@", folder);
        return false;
    }
    const auto name = copyName(path);
    if (!name || !files.fileExists(path)) {
        logLine("installMenuExtra: source %@ missing", path);
        return false;
    }
    const std::string copy = appendingPathComponent(folder, *name);
    const bool isReplacing = !holds(files, copy, path) && deleteOldCopy(files, copy);
    if (isThere(files, copy)) {
        logLine("installMenuExtra already installed at %@", copy);
        return true;
    }
    if (!files.copyItem(path, copy)) {
        logLine("failed to install MenuExtra %@", copy);
        return false;
    }
    if (!isReplacing)
        logLine("installed MenuExtra %@", copy);
    else if (isVerbose())
        logLine("copying MenuExtra to %@", copy);
    return true;
}

bool HalvexMenuExtraTools::removeMenuExtra(const std::string& path) {
    FileManager& files = fileManager();
    const std::string folder = installedFolder();
    const auto name = copyName(path);
    if (!name) {
        logLine("removeMenuExtra: no menu extra is named by %@", path);
        return false;
    }
    const std::string copy = appendingPathComponent(folder, *name);
    if (!files.fileExists(copy))
        return false;
    if (!files.isWritableFile(copy) || !files.isWritableFile(folder)) {
        logLine("removeMenuExtra: no write access to %@", copy);
        return false;
    }
    if (files.removeItem(copy))
        return true;
    const bool moved = platform::sharedWorkspace().recycle(copy);
    logLine("Moved to trash Halvex file: %@", copy);
    return moved;
}

bool HalvexMenuExtraTools::DoUpgradeIfNeeded(std::int32_t tag) {
    const auto installedPath = menuExtraInstalledPaths(tag);
    const auto shippedPath = menuExtraPaths(tag);
    if (!installedPath || !shippedPath || !isReadable(fileManager(), *installedPath) ||
        !isReadable(fileManager(), *shippedPath))
        return false;
    const auto installed = Bundle::bundleWithPath(*installedPath);
    const auto shipped = Bundle::bundleWithPath(*shippedPath);
    if (!installed || !shipped || !installed->infoDictionary() || !shipped->infoDictionary())
        return false;
    const auto installedVersion = installed->stringForInfoDictionaryKey(kVersionKey);
    const auto shippedVersion = shipped->stringForInfoDictionaryKey(kVersionKey);
    if (installedVersion && installedVersion == shippedVersion)
        return false;
    logLine("Halvex Pro: Changing versions of Menu Extra (logout required): %@ != %@",
            installedVersion, shippedVersion);
    installMenuExtra(*shippedPath);
    return true;
}

bool HalvexMenuExtraTools::DoUpgradeIfNeeded() {
    bool upgraded = false;
    for (const std::int32_t tag : {1, 2, 5})
        upgraded = DoUpgradeIfNeeded(tag) || upgraded;
    if (!upgraded)
        return false;
    removeObsolete(31, Halvex2MenuID);
    removeObsolete(32, Halvex2ASMid);
    removeObsolete(6, HalvexProOldCalMenuID);
    return true;
}

bool HalvexMenuExtraTools::isHalvexV2Running() {
    bool running = false;
    for (const char* identifier :
         {Halvex2MenuID, HalvexTodoID, HalvexProOldCalMenuID, Halvex2ASMid})
        running = isExtraLoaded(identifier) || running;
    return running;
}

void HalvexMenuExtraTools::HalvexV2Remove() {
    unloadLoaded(std::array{Halvex2MenuID, HalvexTodoID, Halvex2ASMid, HalvexProOldCalMenuID});
}

void HalvexMenuExtraTools::HalvexProRemove() {
    unloadLoaded(std::array{HalvexMenuID, HalvexTimeOnlyMenuID, HalvexProCalMenuID, HalvexASMid});
}
