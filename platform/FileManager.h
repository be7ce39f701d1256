#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform {

/// A regular file opened for sequential reading. Not thread-safe.
class InputFile : NonCopyable {
  public:
    virtual ~InputFile();

    /// Returns the size in bytes at the time the file was opened.
    virtual std::uint64_t size() const = 0;
    /// Reads at most @p size bytes into @p buffer. Returns the number of bytes read, 0 at the end
    /// of the file, or std::nullopt if reading failed.
    virtual std::optional<std::size_t> read(char* buffer, std::size_t size) = 0;
};

struct OpenFileResult {
    std::unique_ptr<InputFile> file; ///< null if the file could not be opened
    std::string reason;              ///< user-visible cause if @p file is null
    explicit operator bool() const { return file != nullptr; }
};

struct ReadFileResult {
    std::optional<std::string> contents; ///< std::nullopt if the file could not be read
    std::string reason;                  ///< user-visible cause if there are no contents
    explicit operator bool() const { return contents.has_value(); }
};

/// A lock on a file. Destroying it releases the lock, and so does the end of the process.
class HeldFileLock : NonCopyable {
  public:
    virtual ~HeldFileLock();
};

struct LockFileResult {
    std::unique_ptr<HeldFileLock> lock; ///< null if the file could not be locked
    bool isBusy = false;                ///< another lock is held on the file
    std::string reason;                 ///< user-visible cause if @p lock is null
    explicit operator bool() const { return lock != nullptr; }
};

/// The result of FileManager::replaceItem.
enum class Replacement {
    Replaced,
    NotRemoved, ///< the old item could not be removed and is unchanged, or there was none
    NotCopied,  ///< the old item was removed, but the new one could not be copied
};

/// File system access. Paths are absolute and UTF-8. Operations never throw; they report failure
/// through their return value. If memory runs out, this is logged, and a path is returned as an
/// empty string. Thread-safe, except for watchFile.
class FileManager : NonCopyable {
  public:
    virtual ~FileManager();

    // Queries

    /// Returns whether @p path exists. Follows symbolic links, so returns false for a dangling
    /// link. Sets @p isDirectory, unless null, to whether @p path exists and is a folder.
    virtual bool fileExists(const std::string& path, bool* isDirectory = nullptr) const = 0;
    /// Returns whether @p path is a folder or a symbolic link to one.
    bool isDirectory(const std::string& path) const;
    /// Returns whether @p path exists and is not a folder.
    bool isFile(const std::string& path) const;
    /// Returns whether this process may read (or write) @p path. False if it does not exist.
    virtual bool isReadableFile(const std::string& path) const = 0;
    virtual bool isWritableFile(const std::string& path) const = 0;
    /// Returns whether @p path itself is a symbolic link, dangling or not.
    virtual bool isSymbolicLink(const std::string& path) const = 0;
    /// Returns @p path without "." and "..", with symbolic links resolved in the part of it that
    /// exists. Returns @p path unchanged if its links form a cycle.
    virtual std::string resolvingSymbolicLinks(const std::string& path) const = 0;

    // Folder contents, in the file system's order. These return std::nullopt if @p path is not a
    // folder or cannot be read. A symbolic link to a folder is followed only for @p path itself.

    /// Returns the names of all entries, including hidden ones but not "." and "..".
    virtual std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) const = 0;
    /// Returns the paths of all entries below a folder, relative to it. Each folder precedes its
    /// contents. Skips the contents of subfolders that cannot be read.
    std::optional<std::vector<std::string>> subpaths(const std::string& path) const;

    // File contents

    /// Opens a regular file for reading. Fails immediately for folders, pipes and devices.
    virtual OpenFileResult openFile(const std::string& path) const = 0;
    /// Reads a regular file. Fails if it has more than @p maximumBytes bytes.
    ReadFileResult readFile(const std::string& path, std::uint64_t maximumBytes) const;
    /// Creates or atomically replaces the file at @p path: writes a temporary file in the same
    /// folder, flushes it to disk and renames it. Keeps the mode of an existing file and, if
    /// permitted, its owner; a new file gets mode 0666 minus the umask. If @p path is a symbolic
    /// link, replaces its target. Returns whether this succeeded; if not, @p path is unchanged and
    /// the temporary file is removed. Also removes temporary files left behind by killed writers.
    /// If several writers run at the same time, the last one wins.
    virtual bool writeFileAtomically(const std::string& path, std::string_view bytes) = 0;

    // Home folders

    /// Returns the user's home folder: HOME if that is an absolute path, otherwise the one in the
    /// user's account, or "/" if there is no account.
    virtual std::string homeDirectory() const = 0;
    /// Returns the home folder of the account @p name, or std::nullopt if there is no such account.
    virtual std::optional<std::string> homeDirectoryForUser(const std::string& name) const = 0;

    // Creating, removing, copying and moving. These return whether they succeeded. They never
    // replace an existing item, not even a dangling symbolic link.

    /// Creates a folder with mode 0777 minus the umask. Its parent folder must exist.
    virtual bool createDirectory(const std::string& path) = 0;
    /// Creates a symbolic link to @p target, which need not exist.
    virtual bool createSymbolicLink(const std::string& path, const std::string& target) = 0;
    /// Removes a file or a symbolic link. Fails for a folder.
    virtual bool removeFile(const std::string& path) = 0;
    /// Removes a file, a symbolic link, or a folder and its contents. Does not follow symbolic
    /// links. @p path disappears in one step. If any of a folder's contents cannot be removed, for
    /// example because it belongs to another user or is in use, then @p path reappears unchanged.
    /// A hidden rest remains in the parent folder only if the process is killed or the disk fails
    /// meanwhile; see copyItem for when it is removed.
    virtual bool removeItem(const std::string& path) = 0;
    /// Copies a file, a symbolic link, or a folder and its contents. The copy is flushed to disk
    /// and then appears at @p to in one step. Keeps permissions and times; the copy belongs to the
    /// user, so the set-user-ID and set-group-ID bits are dropped. Symbolic links are copied as
    /// links. Fails if @p from contains a pipe or a device, or if @p to is inside @p from. On
    /// failure, leaves nothing behind. If several copies to @p to run at the same time, one of them
    /// succeeds.
    ///
    /// Killed processes may leave hidden items next to the item that they wrote, copied, moved or
    /// removed. The next of these operations on the same path removes them.
    virtual bool copyItem(const std::string& from, const std::string& to) = 0;
    /// Removes @p to and then copies @p from to it, like removeItem and copyItem. The copy is
    /// prepared under a hidden name first. If the process is killed, @p to is the complete old item
    /// or the complete new one, unless the file system cannot exchange two items or there was no
    /// space for both: then @p to may be missing.
    virtual Replacement replaceItem(const std::string& from, const std::string& to) = 0;
    /// Moves a file, a symbolic link or a folder. Across file systems, moves only files and
    /// symbolic links: creates a copy, then removes @p from. The copy of a file is flushed to disk
    /// and has the same mode and times and, if permitted, the same owner. On failure, @p from is
    /// unchanged and @p to is absent. If the process is killed after copying, both exist; the next
    /// move finds that @p to has the same contents and modification time, and removes @p from.
    virtual bool moveFile(const std::string& from, const std::string& to) = 0;

    // Locking

    /// Excludes other processes, and other objects in this one, that lock the same file. Does not
    /// wait. Creates the file if necessary; it remains, and its contents are unchanged.
    virtual LockFileResult lockFile(const std::string& path) = 0;

    // Watching

    /// Calls @p handler on the main thread after the file at @p path is created, changed, replaced
    /// or removed, including by changes to the folders above it, which need not exist yet. If it is
    /// a folder, also after an entry of it is added, written, renamed or removed. After a burst of
    /// changes, calls it at least once. The handler may destroy its own watch. Exceptions
    /// from it are logged with the owner's identifier and swallowed. Returns null and logs the
    /// reason if the system is out of watches. Main thread only.
    virtual std::unique_ptr<Watch> watchFile(const std::string& path,
                                             std::function<void()> handler) = 0;
};

/// Returns the process's file manager. The default works on the system's files.
FileManager& fileManager();
template <>
FileManager* exchangeService<FileManager>(FileManager* service);

/// Replaces a leading "~" with the user's home folder, or a leading "~name" with the home folder of
/// that account. Returns @p path unchanged if it has no leading "~" or there is no such account,
/// and an empty string if memory runs out (logged).
std::string expandingTildeInPath(std::string_view path);

} // namespace platform
