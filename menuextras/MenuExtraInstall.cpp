#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/Workspace.h"
#include "platform/base/PathStrings.h"

#include <memory>

using menuextras::installedFolder;
using platform::appendingPathComponent;
using platform::Bundle;
using platform::FileManager;
using platform::fileManager;
using platform::logLine;
using platform::Replacement;

namespace {

/// Returns the file name of the installed copy of the bundle at @p path, or std::nullopt if the
/// path would lead to the installed folder itself or out of it.
std::optional<std::string> installedName(const std::string& path) {
    std::string name = platform::lastPathComponent(path);
    if (name.empty() || name == "/" || name == "." || name == "..")
        return std::nullopt;
    return name;
}

/// Same as fileExists, but also true for a dangling symbolic link.
bool entryExists(const FileManager& files, const std::string& path) {
    return files.fileExists(path) || files.isSymbolicLink(path);
}

/// Returns whether removing @p copy would remove @p source.
bool containsSource(const FileManager& files, const std::string& copy, const std::string& source) {
    const std::string folder = files.resolvingSymbolicLinks(copy);
    const std::string path = files.resolvingSymbolicLinks(source);
    return !files.isSymbolicLink(copy) && (path == folder || path.starts_with(folder + '/'));
}

bool hasInfoDictionary(const std::shared_ptr<Bundle>& bundle) {
    return bundle && bundle->infoDictionary();
}

Replacement replaceOldCopy(FileManager& files, const std::string& path, const std::string& copy) {
    const Replacement result = files.replaceItem(path, copy);
    // The version of the removed bundle is known only if this process has opened it before.
    const auto removed = Bundle::lastRead(copy);
    if (result == Replacement::NotRemoved)
        logLine("error removing old MenuExtra at %@", copy);
    else if (hasInfoDictionary(removed))
        logLine("replacing MenuExtra (V%@) at %@", removed->version(), copy);
    return result;
}

bool isReadable(const std::optional<std::string>& path) {
    return path && fileManager().fileExists(*path) && fileManager().isReadableFile(*path);
}

void unloadIfLoaded(const std::string& identifier) {
    if (HalvexMenuExtraTools::isExtraLoaded(identifier))
        HalvexMenuExtraTools::removeExtra(identifier);
}

void removeObsolete(std::int32_t tag, const std::string& identifier) {
    const auto path = HalvexMenuExtraTools::menuExtraInstalledPaths(tag);
    unloadIfLoaded(identifier);
    if (!path || !fileManager().fileExists(*path))
        return;
    if (fileManager().removeItem(*path))
        logLine("removed old MenuExtra at %@", *path);
    else
        logLine("error removing old MenuExtra at %@", *path);
}

} // namespace

bool HalvexMenuExtraTools::installMenuExtra(const std::string& path) {
    return platform::guardedOperation([&] {
        FileManager& files = fileManager();
        const std::string folder = installedFolder();
        if (!files.isWritableFile(folder)) {
            logLine("installMenuExtra: no write access to install Menu Extra at %@", folder);
            return false;
        }
        const auto name = installedName(path);
        if (!name || !files.fileExists(path)) {
            logLine("installMenuExtra: source %@ missing", path);
            return false;
        }
        const std::string copy = appendingPathComponent(folder, *name);
        const bool isReplacing = !containsSource(files, copy, path) && entryExists(files, copy);
        Replacement result =
            isReplacing ? replaceOldCopy(files, path, copy) : Replacement::NotRemoved;
        if (result == Replacement::NotRemoved) {
            if (entryExists(files, copy)) {
                logLine("installMenuExtra already installed at %@", copy);
                return true;
            }
            result = files.copyItem(path, copy) ? Replacement::Replaced : Replacement::NotCopied;
        }
        if (result == Replacement::NotCopied) {
            logLine("failed to install MenuExtra %@", copy);
            return false;
        }
        if (!isReplacing)
            logLine("installed MenuExtra %@", copy);
        else if (identifiers::isVerbose())
            logLine("copying MenuExtra to %@", copy);
        return true;
    });
}

bool HalvexMenuExtraTools::removeMenuExtra(const std::string& path) {
    return platform::guardedOperation([&] {
        FileManager& files = fileManager();
        const std::string folder = installedFolder();
        const auto name = installedName(path);
        if (!name) {
            logLine("removeMenuExtra: no menu extra name in \"%@\"", path);
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
    });
}

bool HalvexMenuExtraTools::DoUpgradeIfNeeded(std::int32_t tag) {
    return platform::guardedOperation([&] {
        const auto installedPath = menuExtraInstalledPaths(tag);
        const auto shippedPath = menuExtraPaths(tag);
        if (!isReadable(installedPath) || !isReadable(shippedPath))
            return false;
        const auto installed = Bundle::bundleWithPath(*installedPath);
        const auto shipped = Bundle::bundleWithPath(*shippedPath);
        if (!hasInfoDictionary(installed) || !hasInfoDictionary(shipped))
            return false;
        // Two missing versions count as different.
        if (installed->version() && installed->version() == shipped->version())
            return false;
        logLine("Halvex Pro: Changing versions of Menu Extra (logout required): %@ != %@",
                installed->version(), shipped->version());
        installMenuExtra(*shippedPath);
        return true;
    });
}

bool HalvexMenuExtraTools::DoUpgradeIfNeeded() {
    return platform::guardedOperation([&] {
        bool upgraded = false;
        for (const std::int32_t tag : {1, 2, 5})
            upgraded = DoUpgradeIfNeeded(tag) || upgraded;
        if (!upgraded)
            return false;
        removeObsolete(31, Halvex2MenuID);
        removeObsolete(32, Halvex2ASMid);
        removeObsolete(6, HalvexProOldCalMenuID);
        return true;
    });
}

bool HalvexMenuExtraTools::isHalvexV2Running() {
    return platform::guardedOperation([&] {
        bool isRunning = false;
        for (const char* identifier :
             {Halvex2MenuID, HalvexTodoID, HalvexProOldCalMenuID, Halvex2ASMid})
            isRunning =
                isExtraLoaded(identifier) || isRunning; // queries all four, even after a hit
        return isRunning;
    });
}

void HalvexMenuExtraTools::HalvexV2Remove() {
    platform::guardedOperation([&] {
        for (const char* identifier :
             {Halvex2MenuID, HalvexTodoID, Halvex2ASMid, HalvexProOldCalMenuID})
            unloadIfLoaded(identifier);
    });
}

void HalvexMenuExtraTools::HalvexProRemove() {
    platform::guardedOperation([&] {
        for (const char* identifier :
             {HalvexMenuID, HalvexTimeOnlyMenuID, HalvexProCalMenuID, HalvexASMid})
            unloadIfLoaded(identifier);
    });
}
