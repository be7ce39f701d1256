#include "identifiers/ExportedIdentifiers.h"
#include "paths/PreferencePane.h"
#include "paths/ThemeFolders.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/Workspace.h"
#include "platform/base/PathStrings.h"

#include <algorithm>
#include <array>
#include <string_view>
#include <unordered_set>

using platform::appendingPathComponent;
using platform::fileManager;

namespace {

constexpr const char* kLocalApplicationSupport = "/Library/Application Support";
constexpr const char* kHalvexFolder = "Halvex";
constexpr const char* kPicturesFolder = "Pictures";
constexpr const char* kHolidaysFolder = "Holidays";
constexpr const char* kBackgroundsFolder = "Glimmerbox Backgrounds";

std::string userLibrary() {
    return appendingPathComponent(fileManager().homeDirectory(), "Library");
}

std::string localMakerFolder() {
    return appendingPathComponent(kLocalApplicationSupport, quorvaneSoftwareFolder);
}

std::string localFolder(std::string_view name) {
    return appendingPathComponent(localMakerFolder(), name);
}

std::string ensureFolder(std::string path) {
    ovxPaths::ovxMakeDirIfNeeded(path);
    return path;
}

/// Creates a link to the backgrounds folder in @p folder, if both exist. Returns false on failure.
bool createBackgroundsLink(const std::string& folder) {
    const std::string backgrounds = ovxPaths::ovxGetDeskTopBackgroundsPath();
    if (!fileManager().fileExists(backgrounds) || !fileManager().fileExists(folder))
        return true;
    return fileManager().createSymbolicLink(appendingPathComponent(folder, kBackgroundsFolder),
                                            backgrounds);
}

bool isFrameName(std::string_view name) {
    constexpr std::array<std::string_view, 6> kExcludedEndings{"zip", "sit", "gz",
                                                               "ivc", "txt", "plist"};
    return name != ".DS_Store" && std::ranges::none_of(kExcludedEndings, [name](auto ending) {
               return name.ends_with(ending);
           });
}

/// Returns whether @p folder existed; creates it otherwise.
bool existed(const std::string& folder) {
    if (fileManager().isDirectory(folder))
        return true;
    ovxPaths::ovxMakeDirIfNeeded(folder);
    return false;
}

} // namespace

std::string
HalvexFilePaths::ovxGetUserApplSupportFolder(const std::optional<std::string>& subfolder) {
    return platform::guardedOperation([&] {
        const std::string folder = appendingPathComponent(userLibrary(), "Application Support");
        return subfolder ? ensureFolder(appendingPathComponent(folder, *subfolder)) : folder;
    });
}

std::string
HalvexFilePaths::ovxGetUserQuorvaneSoftwareFolder(const std::optional<std::string>& subfolder) {
    return platform::guardedOperation([&] {
        const std::string folder = ovxGetUserApplSupportFolder(quorvaneSoftwareFolder);
        return subfolder ? ensureFolder(appendingPathComponent(folder, *subfolder)) : folder;
    });
}

std::string HalvexFilePaths::ovxGetUsersHalvexProSupportDir() {
    return platform::guardedOperation(
        [&] { return ovxGetUserQuorvaneSoftwareFolder(HalvexProSupportFolder); });
}

std::string HalvexFilePaths::ovxGetLocalQuorvaneSoftwareSupportDir() {
    return platform::guardedOperation([&] { return ensureFolder(localMakerFolder()); });
}

std::string HalvexFilePaths::ovxGetLocalHalvexApplSupportFolder() {
    return platform::guardedOperation([&] {
        return ensureFolder(
            appendingPathComponent(ovxGetLocalQuorvaneSoftwareSupportDir(), kHalvexFolder));
    });
}

std::string HalvexFilePaths::ovxGetLocalHalvexProSupportDir() {
    return platform::guardedOperation(
        [&] { return ensureFolder(localFolder(HalvexProSupportFolder)); });
}

std::string HalvexFilePaths::HalvexOldPathLocationFile() {
    return platform::guardedOperation([&] {
        return fileManager().resolvingSymbolicLinks(
            appendingPathComponent(userLibrary(), HalvexLocation));
    });
}

std::vector<std::string> paths::themeFolders() {
    std::vector<std::string> folders{
        appendingPathComponent(HalvexFilePaths::ovxGetUserApplSupportFolder(), themesFolder),
        localFolder(themesFolder)};
    auto pane = loadedPreferencePane();
    if (!pane)
        pane = installedPreferencePane();
    if (pane)
        folders.push_back(appendingPathComponent(
            pane->bundlePath(), std::string("Contents/Resources/") + themesFolder));
    return folders;
}

namespace ovxPaths {

void ovxMakeDirIfNeeded(const std::string& path) {
    platform::guardedOperation([&] {
        if (fileManager().fileExists(path) || fileManager().isSymbolicLink(path))
            return;
        if (!fileManager().createDirectory(path))
            platform::logLine("ovxMakeDirIfNeeded: Error creating path: %@", path);
    });
}

std::string ovxGetLocalQuorvaneSoftwareSupportDir() {
    return HalvexFilePaths::ovxGetLocalQuorvaneSoftwareSupportDir();
}

std::string ovxGetApplSupportFolder(const std::optional<std::string>& subfolder) {
    return platform::guardedOperation([&] {
        const std::string folder = HalvexFilePaths::ovxGetUserQuorvaneSoftwareFolder(kHalvexFolder);
        return subfolder ? ensureFolder(appendingPathComponent(folder, *subfolder)) : folder;
    });
}

void ovxHalvexMakeUserSupportDir() {
    platform::guardedOperation([&] {
        ovxMakeDirIfNeeded(HalvexFilePaths::ovxGetUserApplSupportFolder());
        HalvexFilePaths::ovxGetUserApplSupportFolder(kHalvexFolder);
    });
}

void ovxHalvexMakeLocalSupportDir() {
    platform::guardedOperation([&] {
        HalvexFilePaths::ovxGetLocalHalvexApplSupportFolder();
        const std::string pictures = ensureFolder(localFolder(kPicturesFolder));
        ovxMakeDirIfNeeded(localFolder(kHolidaysFolder));
        ovxMakeDirIfNeeded(localFolder(themesFolder));
        if (!createBackgroundsLink(pictures))
            platform::logLine("Error creating symbolic link at: %@", pictures);
    });
}

void ovxGlimmerboxMakeSupportDir() {
    platform::guardedOperation([&] {
        ovxMakeDirIfNeeded(HalvexFilePaths::ovxGetUserApplSupportFolder());
        const std::string frames = ensureFolder(ovxGetGlimmerboxSupportPath());
        ovxMakeDirIfNeeded(ovxGetDeskTopBackgroundsPath());
        if (!createBackgroundsLink(frames))
            platform::logLine("Error Creating SymbolicLink at: %@", frames);
    });
}

std::string ovxGetDeskTopBackgroundsPath() {
    return platform::guardedOperation(
        [&] { return appendingPathComponent("/Library/Desktop Pictures", kBackgroundsFolder); });
}

std::string ovxGetGlimmerboxSupportPath() {
    return platform::guardedOperation([&] {
        return appendingPathComponent(HalvexFilePaths::ovxGetUserApplSupportFolder(),
                                      "Glimmerbox Frames");
    });
}

std::string ovxGetiPhotoAlbumPath() {
    return platform::guardedOperation([&] {
        return appendingPathComponent(fileManager().homeDirectory(),
                                      "Pictures/iPhoto Library/Albums");
    });
}

std::optional<std::vector<std::string>> HalvexThemesList() {
    return platform::guardedOperation([&] {
        const std::string folder = localFolder(themesFolder);
        return existed(folder) ? fileManager().contentsOfDirectory(folder) : std::nullopt;
    });
}

std::optional<std::vector<std::string>> HalvexPicturesList() {
    return platform::guardedOperation([&] {
        const std::string folder = localFolder(kPicturesFolder);
        return existed(folder) ? fileManager().subpaths(folder) : std::nullopt;
    });
}

std::optional<std::vector<std::string>>
ovxGlimmerboxGetListFrames(const std::optional<std::vector<std::string>>& exclude) {
    return platform::guardedOperation([&]() -> std::optional<std::vector<std::string>> {
        const std::string folder = ovxGetGlimmerboxSupportPath();
        const auto listing =
            fileManager().isDirectory(folder) ? fileManager().subpaths(folder) : std::nullopt;
        if (!listing)
            return std::nullopt;
        std::unordered_set<std::string_view> excluded;
        if (exclude)
            excluded.insert(exclude->begin(), exclude->end());
        std::vector<std::string> frames;
        for (const std::string& relative : *listing) {
            if (!isFrameName(platform::lastPathComponent(relative)))
                continue;
            std::string path = appendingPathComponent(folder, relative);
            if (!excluded.contains(path) && fileManager().isFile(path))
                frames.push_back(std::move(path));
        }
        return frames;
    });
}

void ovxShowHalvexThemeFolder(const void*) {
    platform::guardedOperation([&] {
        platform::sharedWorkspace().openFile(
            HalvexFilePaths::ovxGetUserApplSupportFolder(themesFolder));
    });
}

void ovxShowSystemHalvexThemeFolder() {
    platform::guardedOperation(
        [&] { platform::sharedWorkspace().openFile(ensureFolder(localFolder(themesFolder))); });
}

void ovxShowFramesFolder(const void*) {
    platform::guardedOperation(
        [&] { platform::sharedWorkspace().openFile(ovxGetGlimmerboxSupportPath()); });
}

} // namespace ovxPaths
