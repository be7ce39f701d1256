#pragma once

#include "platform/FileManager.h"
#include "platform/posix/SystemCalls.h"

namespace platform::posix {

/// The machine's file system, accessed with POSIX calls.
class PosixFileManager : public FileManager {
  public:
    /// Prepends @p libraryRoot to "/Library" and all paths below it. Does not own @p calls.
    explicit PosixFileManager(std::string libraryRoot = {}, SystemCalls& calls = systemCalls());

    bool fileExists(const std::string& path, bool* isDirectory) const override;
    bool isReadableFile(const std::string& path) const override;
    bool isWritableFile(const std::string& path) const override;
    bool isSymbolicLink(const std::string& path) const override;
    std::string resolvingSymbolicLinks(const std::string& path) const override;
    std::optional<std::vector<std::string>>
    contentsOfDirectory(const std::string& path) const override;
    OpenFileResult openFile(const std::string& path) const override;
    bool writeFileAtomically(const std::string& path, std::string_view bytes) override;
    std::string homeDirectory() const override;
    std::optional<std::string> homeDirectoryForUser(const std::string& name) const override;
    bool createDirectory(const std::string& path) override;
    bool createSymbolicLink(const std::string& path, const std::string& target) override;
    bool removeFile(const std::string& path) override;
    bool removeItem(const std::string& path) override;
    bool copyItem(const std::string& from, const std::string& to) override;
    Replacement replaceItem(const std::string& from, const std::string& to) override;
    bool moveFile(const std::string& from, const std::string& to) override;
    LockFileResult lockFile(const std::string& path) override;
    std::unique_ptr<Watch> watchFile(const std::string& path,
                                     std::function<void()> handler) override;

  private:
    /// Returns the path for system calls, or std::nullopt if @p path is empty or has a null byte.
    std::optional<std::string> systemPath(const std::string& path) const;

    std::string libraryRoot_;
    SystemCalls& calls_;
};

} // namespace platform::posix
