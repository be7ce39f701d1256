#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>
#include <vector>

/// The product's folders and data files. Returns their paths, creates the folders, and reads and
/// writes the data files.
///
/// Paths are absolute, UTF-8 and have no trailing slash. "Created" means created if
/// missing, with ovxPaths::ovxMakeDirIfNeeded: one level at a time, with a log line on
/// failure; the path is returned either way. Operations are stateless, never throw, and
/// block on disk access. If memory runs out, they log this and return an empty path or list,
/// std::nullopt or false. Thread-safe.
///
/// "Application Support" is the folder in the user's Library, and the maker folder is "Quorvane
/// Software" in it. The local folders are those in /Library/Application Support.
class HalvexFilePaths {
  public:
    HalvexFilePaths() = delete;

    // Folders

    /// Returns Application Support or, if given, its @p subfolder. Creates only the subfolder.
    static std::string
    ovxGetUserApplSupportFolder(const std::optional<std::string>& subfolder = {});
    /// Returns the user's maker folder or its @p subfolder. Both are created.
    static std::string
    ovxGetUserQuorvaneSoftwareFolder(const std::optional<std::string>& subfolder = {});
    /// Returns the user's product folder, "Halvex Pro" in the maker folder. Both are created.
    static std::string ovxGetUsersHalvexProSupportDir();
    /// Returns the local maker folder, which is created.
    static std::string ovxGetLocalQuorvaneSoftwareSupportDir();
    /// Returns the local product folder, "Halvex" in the local maker folder. Both are created.
    static std::string ovxGetLocalHalvexApplSupportFolder();
    /// Returns "Halvex Pro" in the local maker folder. Only this last level is created.
    static std::string ovxGetLocalHalvexProSupportDir();
    /// Returns the oldest path of the location file, ~/Library/Halvex Locations, with symbolic
    /// links resolved. Creates nothing.
    static std::string HalvexOldPathLocationFile();

    // World-clock locations
    //
    // A location record is an array. Its elements 0 to 4 identify the location. A record with more
    // than 13 elements is a net record: it comes from a subscription and is stored in a file of its
    // own, the net location cache. The cache and the location file are in the user's product
    // folder, which is created.

    /// Reads the location list and merges the cached net records into it. The list is read from the
    /// location file, after moving that file from one of its two old paths if necessary (logged).
    /// If the file is missing or unreadable (not logged), uses the preference pane's default list,
    /// or an empty list if the pane has none (both logged). Returns std::nullopt only if the
    /// default list exists but cannot be read, or if memory runs out (both logged).
    static std::optional<platform::PropertyList::Array> HalvexLoadLocationFile();
    /// Appends to @p list the cached net records whose locations it does not contain. Logs the
    /// number of duplicates. Returns @p list unchanged if the cache is missing, unreadable or
    /// empty, and std::nullopt if @p list is std::nullopt.
    static std::optional<platform::PropertyList::Array>
    mergeNetLocation(std::optional<platform::PropertyList::Array> list);
    /// Writes the net records of @p list to the cache, unless there are none, and all others to the
    /// location file. Logs both writes. Returns whether the location file was written. A failed
    /// write is logged and beeps. Pass the list with std::move to avoid copying it.
    static bool HalvexSaveLocationTable(platform::PropertyList::Array list);
    /// Replaces the contents of the cache with @p records. Returns whether the cache was written; a
    /// failed write is logged and beeps. If @p records is empty, does nothing and returns true.
    static bool HalvexSaveCacheNetLocation(const platform::PropertyList::Array& records);
    /// Returns whether the cache exists and is not a folder.
    static bool HalvexExistsNetLocation();
    /// Removes the cache. Returns false only if that fails: a missing cache is not a failure, and a
    /// folder at its path is left unchanged and not reported.
    static bool HalvexRemoveNetLocation();

    // Timed warnings. Each list is an array in a file called @p name with the extension "plist".

    /// Reads the first readable list among those in the user's product folder, in Application
    /// Support, in the local product folder, and at @p defaultPath. Returns an empty array if all
    /// are missing or unreadable. Logs an unreadable list in the local product folder and a missing
    /// or unreadable default; other unreadable lists are skipped silently. Creates the user's
    /// product folder, and the local product folder if the search reaches it.
    static platform::PropertyList::Array loadWarnMeTitles(const std::string& name,
                                                          const std::string& defaultPath);
    /// Returns whether the file exists, readable or not, in any of the three folders searched by
    /// loadWarnMeTitles. Creates the product folders that it searches.
    static bool hasCustomWarnMeFile(const std::string& name);
};

/// Operations on paths and lists of paths. "Created" has the same meaning as above.
namespace ovxPaths {

/// Creates a folder at @p path. Its parent folder must exist. Does nothing if anything exists at
/// @p path, including a file or a dangling symbolic link. Logs "ovxMakeDirIfNeeded: Error creating
/// path: …" on failure.
void ovxMakeDirIfNeeded(const std::string& path);

/// Same as HalvexFilePaths::ovxGetLocalQuorvaneSoftwareSupportDir.
std::string ovxGetLocalQuorvaneSoftwareSupportDir();
/// Returns "Halvex" in the user's maker folder, or its @p subfolder. All are created.
std::string ovxGetApplSupportFolder(const std::optional<std::string>& subfolder = {});

/// Creates Application Support and "Halvex" in it.
void ovxHalvexMakeUserSupportDir();
/// Creates the local maker folder with "Halvex", "Pictures", "Holidays" and "Themes" in it. If the
/// backgrounds folder of Glimmerbox, a sibling product, exists, links to it from "Pictures". Logs
/// an error if the link cannot be created or already exists.
void ovxHalvexMakeLocalSupportDir();
/// Creates Application Support, Glimmerbox's frames folder and its backgrounds folder, and
/// links to the backgrounds from the frames folder. Logs an error if the link cannot be created
/// or already exists.
void ovxGlimmerboxMakeSupportDir();

// The next three create nothing.

/// Returns Glimmerbox's backgrounds folder, in /Library/Desktop Pictures.
std::string ovxGetDeskTopBackgroundsPath();
/// Returns Glimmerbox's frames folder, in Application Support.
std::string ovxGetGlimmerboxSupportPath();
/// Returns the user's albums folder, ~/Pictures/iPhoto Library/Albums.
std::string ovxGetiPhotoAlbumPath();

/// Returns the names of all entries of the local themes folder, in file-system order. Returns
/// std::nullopt if the folder is missing (it is then created), is not a folder, or cannot be read.
std::optional<std::vector<std::string>> HalvexThemesList();
/// Returns the paths of everything below the local pictures folder, folders included, relative to
/// it and in file-system order. Returns std::nullopt in the same cases as HalvexThemesList.
std::optional<std::vector<std::string>> HalvexPicturesList();
/// Returns the full paths of the files below Glimmerbox's frames folder, in file-system order.
/// Leaves out ".DS_Store", names that end in "zip", "sit", "gz", "ivc", "txt" or "plist" (with or
/// without a dot before it), and the paths in @p exclude. Returns std::nullopt if the folder does
/// not exist or cannot be read.
std::optional<std::vector<std::string>>
ovxGlimmerboxGetListFrames(const std::optional<std::vector<std::string>>& exclude = {});

// The next three open a folder with Workspace::openFile. They ignore the sender and do
// not report failures.

/// Opens the user's themes folder, "Themes" in Application Support, which is created.
void ovxShowHalvexThemeFolder(const void* sender = nullptr);
/// Opens the local themes folder, which is created if the local maker folder exists.
void ovxShowSystemHalvexThemeFolder();
/// Opens Glimmerbox's frames folder. Creates nothing.
void ovxShowFramesFolder(const void* sender = nullptr);

} // namespace ovxPaths
