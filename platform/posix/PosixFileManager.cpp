#include "platform/posix/PosixFileManager.h"

#include "platform/Defaults.h"
#include "platform/Operation.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/AtomicFile.h"
#include "platform/posix/CopyTree.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/FileLock.h"
#include "platform/posix/Folder.h"
#include "platform/posix/InotifyFileWatch.h"
#include "platform/posix/MoveFile.h"
#include "platform/posix/RemoveTree.h"
#include "platform/posix/SymbolicLinks.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <pwd.h>
#include <sys/stat.h>
#include <utility>
#include <vector>

namespace platform::posix {
namespace {

class HeldPosixLock final : public HeldFileLock {
  public:
    explicit HeldPosixLock(const std::string& path) : lock(path, std::chrono::seconds(0)) {}

    const FileLock lock;
};

class PosixInputFile final : public InputFile {
  public:
    PosixInputFile(Descriptor file, std::uint64_t size) : file_(std::move(file)), size_(size) {}

    std::uint64_t size() const override { return size_; }
    std::optional<std::size_t> read(char* buffer, std::size_t size) override {
        const ssize_t count = retryInterrupted([&] { return ::read(file_.get(), buffer, size); });
        if (count < 0)
            return std::nullopt;
        return static_cast<std::size_t>(count);
    }

  private:
    Descriptor file_;
    std::uint64_t size_;
};

std::string notRegular(mode_t mode) {
    constexpr std::array<std::pair<mode_t, const char*>, 5> kKinds{{{S_IFDIR, "a folder"},
                                                                    {S_IFIFO, "a pipe"},
                                                                    {S_IFCHR, "a device"},
                                                                    {S_IFBLK, "a device"},
                                                                    {S_IFSOCK, "a socket"}}};
    for (const auto& [kind, name] : kKinds)
        if ((mode & S_IFMT) == kind)
            return std::string("is ") + name + ", not a regular file";
    return "is not a regular file";
}

OpenFileResult openRegularFile(const char* path) {
    // Merely opening some devices has effects, so the kind is checked before opening and, because
    // the file may be replaced in between, after it.
    struct stat status {};
    if (::stat(path, &status) != 0)
        return {nullptr, std::strerror(errno)};
    if (!S_ISREG(status.st_mode))
        return {nullptr, notRegular(status.st_mode)};
    Descriptor file(::open(path, O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file || ::fstat(file.get(), &status) != 0)
        return {nullptr, std::strerror(errno)};
    if (!S_ISREG(status.st_mode))
        return {nullptr, notRegular(status.st_mode)};
    return {std::make_unique<PosixInputFile>(std::move(file),
                                             static_cast<std::uint64_t>(status.st_size)),
            {}};
}

/// @p lookUp is getpwuid_r or getpwnam_r, @p account its first argument.
template <class LookUp, class Account>
std::optional<std::string> homeOf(LookUp lookUp, Account account) {
    std::vector<char> buffer(1 << 14);
    passwd entry{};
    passwd* found = nullptr;
    if (lookUp(account, &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
        !found->pw_dir)
        return std::nullopt;
    return found->pw_dir;
}

} // namespace

PosixFileManager::PosixFileManager(std::string libraryRoot, SystemCalls& calls)
    : libraryRoot_(std::move(libraryRoot)), calls_(calls) {}

std::optional<std::string> PosixFileManager::systemPath(const std::string& path) const {
    if (path.empty() || path.find('\0') != std::string::npos)
        return std::nullopt;
    const bool inLibrary = path == "/Library" || path.starts_with("/Library/");
    return inLibrary ? libraryRoot_ + path : path;
}

bool PosixFileManager::fileExists(const std::string& path, bool* isDirectory) const {
    return guardedOperation([&] {
        const auto location = systemPath(path);
        struct stat status {};
        const bool exists = location && ::stat(location->c_str(), &status) == 0;
        if (isDirectory)
            *isDirectory = exists && S_ISDIR(status.st_mode);
        return exists;
    });
}

bool PosixFileManager::isReadableFile(const std::string& path) const {
    return guardedOperation([&] {
        const auto location = systemPath(path);
        return location && ::faccessat(AT_FDCWD, location->c_str(), R_OK, AT_EACCESS) == 0;
    });
}

bool PosixFileManager::isWritableFile(const std::string& path) const {
    return guardedOperation([&] {
        const auto location = systemPath(path);
        return location && ::faccessat(AT_FDCWD, location->c_str(), W_OK, AT_EACCESS) == 0;
    });
}

bool PosixFileManager::isSymbolicLink(const std::string& path) const {
    return guardedOperation([&] {
        const auto location = systemPath(path);
        return location && linkTarget(*location);
    });
}

std::string PosixFileManager::resolvingSymbolicLinks(const std::string& path) const {
    return guardedOperation([&] {
        if (!path.starts_with('/'))
            return path;
        PathWalk walk(path);
        while (auto next = walk.next()) {
            const auto location = systemPath(*next);
            const auto target = location ? linkTarget(*location) : std::nullopt;
            if (!target)
                walk.enter(std::move(*next));
            else if (!walk.follow(*target))
                return path;
        }
        return walk.folder();
    });
}

std::optional<std::vector<std::string>>
PosixFileManager::contentsOfDirectory(const std::string& path) const {
    return guardedOperation([&]() -> std::optional<std::vector<std::string>> {
        const auto location = systemPath(path);
        if (!location)
            return std::nullopt;
        const Descriptor folder = openFolder(*location);
        return folder ? namesIn(folder.get()) : std::nullopt;
    });
}

OpenFileResult PosixFileManager::openFile(const std::string& path) const {
    return guardedOperation(
        [&] {
            const auto location = systemPath(path);
            return location ? openRegularFile(location->c_str())
                            : OpenFileResult{nullptr, "not a valid path"};
        },
        OpenFileResult{nullptr, "out of memory"});
}

bool PosixFileManager::writeFileAtomically(const std::string& path, std::string_view bytes) {
    return guardedStep([&] {
        const auto location = systemPath(path);
        return location && posix::writeFileAtomically(*location, bytes, calls_);
    });
}

std::string PosixFileManager::homeDirectory() const {
    return guardedOperation([&]() -> std::string {
        const char* home = std::getenv("HOME");
        if (home && *home == '/')
            return home;
        return homeOf(::getpwuid_r, ::geteuid()).value_or("/");
    });
}

std::optional<std::string> PosixFileManager::homeDirectoryForUser(const std::string& name) const {
    return guardedOperation([&] { return homeOf(::getpwnam_r, name.c_str()); });
}

bool PosixFileManager::createDirectory(const std::string& path) {
    return guardedStep([&] {
        const auto location = systemPath(path);
        return location && ::mkdir(location->c_str(), 0777) == 0;
    });
}

bool PosixFileManager::createSymbolicLink(const std::string& path, const std::string& target) {
    return guardedStep([&] {
        const auto location = systemPath(path);
        return location && ::symlink(target.c_str(), location->c_str()) == 0;
    });
}

bool PosixFileManager::removeFile(const std::string& path) {
    return guardedStep([&] {
        const auto location = systemPath(path);
        return location && ::unlink(location->c_str()) == 0;
    });
}

bool PosixFileManager::removeItem(const std::string& path) {
    return guardedStep([&] {
        const auto location = systemPath(path);
        return location && posix::removeItem(*location, calls_);
    });
}

bool PosixFileManager::copyItem(const std::string& from, const std::string& to) {
    return guardedStep([&] {
        const auto source = systemPath(from);
        const auto destination = systemPath(to);
        return source && destination && posix::copyItem(*source, *destination, calls_);
    });
}

Replacement PosixFileManager::replaceItem(const std::string& from, const std::string& to) {
    return guardedOperation(
        [&] {
            const auto destination = systemPath(to);
            return destination
                       ? posix::replaceItem(systemPath(from).value_or(""), *destination, calls_)
                       : Replacement::NotRemoved;
        },
        Replacement::NotRemoved);
}

bool PosixFileManager::moveFile(const std::string& from, const std::string& to) {
    return guardedStep([&] {
        const auto source = systemPath(from);
        const auto destination = systemPath(to);
        return source && destination && posix::moveFile(*source, *destination);
    });
}

LockFileResult PosixFileManager::lockFile(const std::string& path) {
    return guardedStep([&]() -> LockFileResult {
        const auto location = systemPath(path);
        if (!location)
            return {nullptr, false, std::strerror(EINVAL)};
        auto held = std::make_unique<HeldPosixLock>(*location);
        const int error = held->lock.error();
        if (error != 0)
            return {nullptr, error == EAGAIN || error == EACCES, std::strerror(error)};
        return {std::move(held), false, {}};
    });
}

std::unique_ptr<Watch> PosixFileManager::watchFile(const std::string& path,
                                                   std::function<void()> handler) {
    return guardedStep([&] {
        const auto location = systemPath(path);
        return location ? makeInotifyFileWatch(*location, std::move(handler)) : nullptr;
    });
}

} // namespace platform::posix

// Never destroyed: threads that outlive main may use it.
platform::FileManager& platform::defaults::fileManager() {
    static NeverDestroyed<posix::PosixFileManager> manager;
    return manager.get();
}
