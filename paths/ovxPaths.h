#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>
#include <vector>

/// The product's folders and data files: where each one is, and the readers and writers of the data
/// files. Paths are UTF-8 and absolute, without a slash at their end. Folders are created one level
/// at a time by ovxPaths::ovxMakeDirIfNeeded, which logs a failure; the path is given all the same.
/// Nothing is kept between calls, and nothing throws. Any thread that may wait for the disk.
///
/// "Application Support" is the one in the user's home folder, the maker folder "Quorvane Software"
/// lies in it; the local ones are in /Library/Application Support.
class HalvexFilePaths {
  public:
    HalvexFilePaths() = delete;

    // Folders

    /// Application Support, of which nothing is created; or @p subfolder of it, created.
    static std::string
    ovxGetUserApplSupportFolder(const std::optional<std::string>& subfolder = {});
    /// The user's maker folder, created; or @p subfolder of it, created as well.
    static std::string
    ovxGetUserQuorvaneSoftwareFolder(const std::optional<std::string>& subfolder = {});
    /// The user's product folder, "Halvex Pro" in the maker folder; both are created.
    static std::string ovxGetUsersHalvexProSupportDir();
    /// The local maker folder, created.
    static std::string ovxGetLocalQuorvaneSoftwareSupportDir();
    /// The local product folder, "Halvex" in the local maker folder; both are created.
    static std::string ovxGetLocalHalvexApplSupportFolder();
    /// "Halvex Pro" in the local maker folder. Only that last level is created.
    static std::string ovxGetLocalHalvexProSupportDir();
    /// The oldest place of the location file, ~/Library/Halvex Locations, with symbolic links
    /// resolved. Nothing is created.
    static std::string HalvexOldPathLocationFile();

    // The list of world-clock locations. A record is an array; its elements 0 to 4 say which
    // location it is, and one with more than 13 elements comes from a subscription: a net record.
    // Net records are kept in a cache, a file of their own. paths/LocationRecords.h has the rules.

    /// Reads the list: from the location file, which is first moved here when it still lies in one
    /// of its two old places (logged), else from the preference pane's default list (logged), else
    /// an empty one (logged). The cached net records are merged into it. Nothing only when the
    /// default list is there and cannot be read (logged). An unreadable location file counts as
    /// missing, unlogged.
    static std::optional<platform::PropertyList::Array> HalvexLoadLocationFile();
    /// @p list with the cached net records behind its own, without those that it already has; how
    /// many these are is logged. A cache that is missing, unreadable or empty leaves the list as it
    /// is; without a list there is nothing to merge with, and nothing comes back.
    static std::optional<platform::PropertyList::Array>
    mergeNetLocation(std::optional<platform::PropertyList::Array> list);
    /// Writes the net records of @p list to the cache (unless there are none) and the others to the
    /// location file, and logs both. Whether the location file was written; if not, that is logged
    /// and the system beeps. A caller that is done with its list moves it here.
    static bool HalvexSaveLocationTable(platform::PropertyList::Array list);
    /// Replaces the cache by @p records; no records leave it as it is. Logs, answers, and beeps as
    /// HalvexSaveLocationTable does.
    static bool HalvexSaveCacheNetLocation(const platform::PropertyList::Array& records);
    /// Whether the cache exists and is no folder.
    static bool HalvexExistsNetLocation();
    /// Removes the cache. Whether there is none now (a folder in its place is none, and stays).
    static bool HalvexRemoveNetLocation();

    // The lists of the timed warnings, arrays in files called @p name with the extension "plist"

    /// Reads the first list there is: the one in the user's product folder, in Application Support,
    /// in the local product folder, at @p defaultPath. Empty when there is none. What is unreadable
    /// is passed over; a local list that is, and a missing default, are logged.
    static platform::PropertyList::Array loadWarnMeTitles(const std::string& name,
                                                          const std::string& defaultPath);
    /// Whether such a file is in one of the three folders, readable or not.
    static bool hasCustomWarnMeFile(const std::string& name);
};

/// Operations on paths and lists of paths. Folders are created and failures logged as above.
namespace ovxPaths {

/// Creates one folder at @p path when nothing is there; its parent must exist. Whatever is there,
/// a file or a dangling link too, stays. Logs "ovxMakeDirIfNeeded: Error creating path: …".
void ovxMakeDirIfNeeded(const std::string& path);

/// As HalvexFilePaths has it.
std::string ovxGetLocalQuorvaneSoftwareSupportDir();
/// "Halvex" in the user's maker folder, or @p subfolder of it; all are created.
std::string ovxGetApplSupportFolder(const std::optional<std::string>& subfolder = {});

/// Creates Application Support and "Halvex" in it.
void ovxHalvexMakeUserSupportDir();
/// Creates the local maker folder and its "Halvex", "Pictures", "Holidays" and "Themes", then links
/// Glimmerbox's backgrounds, where they exist, into "Pictures". A link that cannot be made, as when
/// it is there already, is logged.
void ovxHalvexMakeLocalSupportDir();
/// Creates Application Support, Glimmerbox's frames folder and its backgrounds folder, and links
/// the latter into the former. A link that cannot be made, as when it is there already, is logged.
void ovxGlimmerboxMakeSupportDir();

// These create nothing.

/// Glimmerbox's backgrounds, in /Library/Desktop Pictures.
std::string ovxGetDeskTopBackgroundsPath();
/// Glimmerbox's picture frames, in Application Support.
std::string ovxGetGlimmerboxSupportPath();
/// The user's albums, "~/Pictures/iPhoto Library/Albums".
std::string ovxGetiPhotoAlbumPath();

/// The names of everything in the local themes folder, in the file system's order. Nothing, after
/// creating the folder when it is missing, when it is no folder or cannot be read.
std::optional<std::vector<std::string>> HalvexThemesList();
/// The paths of everything below the local pictures folder, relative to it, folders included, in
/// the file system's order. Nothing as for the themes.
std::optional<std::vector<std::string>> HalvexPicturesList();
/// The full paths of the files below Glimmerbox's frames folder that may be frames, in the file
/// system's order: not ".DS_Store", nothing whose name ends with "zip", "sit", "gz", "ivc", "txt"
/// or "plist" (with or without a dot), and none of @p exclude. Nothing when there is no such
/// folder.
std::optional<std::vector<std::string>>
ovxGlimmerboxGetListFrames(const std::optional<std::vector<std::string>>& exclude = {});

// These show a folder with the workspace. The sender, where there is one, plays no part.

/// The user's themes, "Themes" in Application Support, created.
void ovxShowHalvexThemeFolder(const void* sender = nullptr);
/// The local themes folder, created when its parent exists.
void ovxShowSystemHalvexThemeFolder();
/// Glimmerbox's frames folder; nothing is created.
void ovxShowFramesFolder(const void* sender = nullptr);

} // namespace ovxPaths
