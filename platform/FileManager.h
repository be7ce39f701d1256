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

/// A regular file, open for reading from its start. One thread at a time.
class InputFile : NonCopyable {
  public:
    virtual ~InputFile();

    /// Bytes, when it was opened.
    virtual std::uint64_t size() const = 0;
    /// Puts the next bytes, at most @p size, into @p buffer and gives their number: 0 at the end,
    /// nothing when reading failed.
    virtual std::optional<std::size_t> read(char* buffer, std::size_t size) = 0;
};

struct OpenFileResult {
    std::unique_ptr<InputFile> file; ///< null when the file could not be opened
    std::string reason;              ///< why not, for people
    explicit operator bool() const { return file != nullptr; }
};

struct ReadFileResult {
    std::optional<std::string> contents;
    std::string reason; ///< why there are no contents, for people
    explicit operator bool() const { return contents.has_value(); }
};

/// Files and folders as the library needs them. Paths are UTF-8 and absolute. No operation throws:
/// a failure is the return value. Safe from any thread, but for watchFile.
class FileManager : NonCopyable {
  public:
    virtual ~FileManager();

    // What is there

    /// Whether something is at @p path; a symbolic link is followed, so a dangling one is not
    /// there.
    /// @p isDirectory, when not null, then says whether it is a folder (else it becomes false).
    virtual bool fileExists(const std::string& path, bool* isDirectory = nullptr) const = 0;
    /// Whether @p path is a folder, or a symbolic link to one.
    bool isDirectory(const std::string& path) const;
    /// Whether this process may read, or write, what is at @p path. False when nothing is there.
    virtual bool isReadableFile(const std::string& path) const = 0;
    virtual bool isWritableFile(const std::string& path) const = 0;
    /// Whether @p path itself is a symbolic link, dangling or not.
    virtual bool isSymbolicLink(const std::string& path) const = 0;
    /// @p path with the symbolic links in it replaced by what they point to, as far as it exists;
    /// without "." and "..". As it is, when links lead in circles.
    virtual std::string resolvingSymbolicLinks(const std::string& path) const = 0;

    // Folders. Nothing when there is none at @p path or it cannot be read. In the file system's
    // order; a symbolic link to a folder is followed at @p path only.

    /// The names of everything in a folder, hidden entries too, but not "." and "..".
    virtual std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) const = 0;
    /// The paths of everything below a folder, relative to it: each folder, then what is below it.
    /// Below a folder that cannot be read nothing is listed.
    std::optional<std::vector<std::string>> subpaths(const std::string& path) const;

    // Contents

    /// Opens a regular file. Folders, pipes and devices are refused, without waiting.
    virtual OpenFileResult openFile(const std::string& path) const = 0;
    /// Reads a regular file whole. One with more than @p maximumBytes is refused.
    ReadFileResult readFile(const std::string& path, std::uint64_t maximumBytes) const;
    /// Puts a file with these bytes at @p path: a new file in the same folder, flushed to the disk,
    /// takes the old one's place in one step, with its mode and, where that is permitted, its
    /// owner. A new file's mode is 0666 less the process's mask. A symbolic link at @p path is
    /// followed and stays. On failure what was at @p path is untouched and nothing is left beside
    /// it. What a writer that was killed left beside is removed. Of two writers at once the last
    /// one counts.
    virtual bool writeFileAtomically(const std::string& path, std::string_view bytes) = 0;

    // Places

    /// The user's home folder: HOME when that is absolute, else what the account says,
    /// "/" without an account.
    virtual std::string homeDirectory() const = 0;
    /// The home folder of the account with this name; nothing when there is no such account.
    virtual std::optional<std::string> homeDirectoryForUser(const std::string& name) const = 0;

    // Making, moving and removing. True when it is done. Nothing that is in the way is replaced, a
    // dangling symbolic link neither.

    /// Creates one folder, in a folder that exists; mode 0777 less the process's mask.
    virtual bool createDirectory(const std::string& path) = 0;
    /// Creates a symbolic link that holds @p target, whatever may be there.
    virtual bool createSymbolicLink(const std::string& path, const std::string& target) = 0;
    /// Removes a file or a symbolic link. False for a folder.
    virtual bool removeFile(const std::string& path) = 0;
    /// Removes a file, a symbolic link, or a folder with everything in it; what links in it point
    /// to stays. A folder in which something cannot be removed for want of permission is left
    /// whole. It goes from @p path in one step; a process killed after that leaves the rest beside
    /// it under a hidden name, and the next removal of the same folder takes it along.
    virtual bool removeItem(const std::string& path) = 0;
    /// Copies a file, a symbolic link, or a folder with everything in it, all of it flushed to the
    /// disk before it appears at @p to in one step. Permissions and times stay; the copy belongs to
    /// the user, so its mode loses the set-user and set-group bits. Symbolic links are copied as
    /// links, wherever they lead. False when there is a pipe or a device in it, or when @p to lies
    /// in @p from. On failure nothing is left; what a copier that was killed left beside @p to the
    /// next one removes. Of two copiers at once one succeeds.
    virtual bool copyItem(const std::string& from, const std::string& to) = 0;
    /// Moves a file or a symbolic link, also to another file system: there a copy, flushed to the
    /// disk, with its mode, times and, where that is permitted, its owner, is in place before the
    /// old one is removed. A folder is moved within its file system only. On failure what was at
    /// @p from is still there, and nothing is at @p to.
    virtual bool moveFile(const std::string& from, const std::string& to) = 0;

    // Changes

    /// Calls @p handler on the main thread after the file at @p path appears, changes, is replaced
    /// or goes, also when folders above it come later, are replaced or go. A burst of changes gives
    /// at least one call after the last. The handler may destroy its own watch. What
    /// it throws is logged under the name of the owner that asked and goes no further. Null when
    /// the system has no watches left, which is logged. Main thread.
    virtual std::unique_ptr<Watch> watchFile(const std::string& path,
                                             std::function<void()> handler) = 0;
};

/// The process's file manager. Until a host installs another one: the system's own.
FileManager& fileManager();
template <>
FileManager* exchangeService<FileManager>(FileManager* service);

/// Replaces a leading "~" with the user's home folder, and a leading "~name" with the home folder
/// of that account. Returns any other path, and one whose account does not exist, unchanged.
std::string expandingTildeInPath(std::string_view path);

} // namespace platform
