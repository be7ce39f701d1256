#pragma once

#include "platform/Service.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>

namespace platform {

/// A regular file, open for reading from its start. One thread at a time.
class InputFile {
  public:
    InputFile() = default;
    virtual ~InputFile();
    InputFile(const InputFile&) = delete;
    InputFile& operator=(const InputFile&) = delete;

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

/// A file that is looked out for; destroying it ends that. After that its handler is never called
/// again. Main thread.
class FileWatch {
  public:
    FileWatch() = default;
    virtual ~FileWatch();
    FileWatch(const FileWatch&) = delete;
    FileWatch& operator=(const FileWatch&) = delete;
};

/// Files and folders as the library needs them. Paths are UTF-8 and absolute. No operation throws:
/// a failure is the return value. Safe from any thread, but for watchFile.
class FileManager {
  public:
    FileManager() = default;
    virtual ~FileManager();
    FileManager(const FileManager&) = delete;
    FileManager& operator=(const FileManager&) = delete;

    // What is there

    /// Whether something is at @p path; a symbolic link is followed, so a dangling one is not
    /// there.
    /// @p isDirectory, when not null, then says whether it is a folder (else it becomes false).
    virtual bool fileExists(const std::string& path, bool* isDirectory = nullptr) const = 0;
    /// Whether this process may read, or write, what is at @p path. False when nothing is there.
    virtual bool isReadableFile(const std::string& path) const = 0;
    virtual bool isWritableFile(const std::string& path) const = 0;

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

    /// The user's home folder: HOME when that is absolute, else what the account says.
    virtual std::string homeDirectory() const = 0;

    // Changes

    /// Calls @p handler on the main thread after the file at @p path appears, changes, is replaced
    /// or goes, also when folders above it come later, are replaced or go. A burst of changes gives
    /// at least one call after the last. The handler may destroy its own watch. Null when the
    /// system has no watches left, which is logged. Main thread.
    virtual std::unique_ptr<FileWatch> watchFile(const std::string& path,
                                                 std::function<void()> handler) = 0;
};

/// The process's file manager. Until a host installs another one: the system's own.
FileManager& fileManager();
template <>
FileManager* exchangeService<FileManager>(FileManager* service);

} // namespace platform
