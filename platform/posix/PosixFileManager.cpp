#include "platform/posix/PosixFileManager.h"

#include "platform/Defaults.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/AtomicFile.h"
#include "platform/posix/CopyTree.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Folder.h"
#include "platform/posix/InotifyFileWatch.h"
#include "platform/posix/MoveFile.h"
#include "platform/posix/RemoveTree.h"

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

class PosixInputFile final : public InputFile {
  public:
    PosixInputFile(Descriptor file, std::uint64_t size) : file_(std::move(file)), size_(size) {}

    std::uint64_t size() const override { return size_; }
    std::optional<std::size_t> read(char* buffer, std::size_t size) override {
        ssize_t count = 0;
        do
            count = ::read(file_.get(), buffer, size);
        while (count < 0 && errno == EINTR);
        if (count < 0)
            return std::nullopt;
        return static_cast<std::size_t>(count);
    }

  private:
    Descriptor file_;
    std::uint64_t size_;
};

const char* kindOfFile(mode_t mode) {
    constexpr std::array<std::pair<mode_t, const char*>, 5> kKinds{{{S_IFDIR, "a folder"},
                                                                    {S_IFIFO, "a pipe"},
                                                                    {S_IFCHR, "a device"},
                                                                    {S_IFBLK, "a device"},
                                                                    {S_IFSOCK, "a socket"}}};
    for (const auto& [kind, name] : kKinds)
        if ((mode & S_IFMT) == kind)
            return name;
    return "no regular file";
}

std::string notRegular(mode_t mode) {
    return std::string("It is ") + kindOfFile(mode) + ".";
}

constexpr int kMaximumLinks = 40;

/// Puts the components of @p path on a stack, the first one on top.
void pushComponents(std::string_view path, std::vector<std::string>& stack) {
    while (!path.empty()) {
        const auto slash = path.rfind('/');
        const auto start = slash == std::string_view::npos ? 0 : slash + 1;
        stack.emplace_back(path.substr(start));
        path = path.substr(0, start == 0 ? 0 : slash);
    }
}

/// @p look is getpwuid_r or getpwnam_r, @p account what it looks for.
template <class Look, class Account>
std::optional<std::string> homeOf(Look look, Account account) {
    std::vector<char> buffer(1 << 14);
    passwd entry{};
    passwd* found = nullptr;
    if (look(account, &entry, buffer.data(), buffer.size(), &found) != 0 || !found ||
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
    const auto place = systemPath(path);
    struct stat status {};
    const bool exists = place && ::stat(place->c_str(), &status) == 0;
    if (isDirectory)
        *isDirectory = exists && S_ISDIR(status.st_mode);
    return exists;
}

bool PosixFileManager::isReadableFile(const std::string& path) const {
    const auto place = systemPath(path);
    return place && ::faccessat(AT_FDCWD, place->c_str(), R_OK, AT_EACCESS) == 0;
}

bool PosixFileManager::isWritableFile(const std::string& path) const {
    const auto place = systemPath(path);
    return place && ::faccessat(AT_FDCWD, place->c_str(), W_OK, AT_EACCESS) == 0;
}

bool PosixFileManager::isSymbolicLink(const std::string& path) const {
    const auto place = systemPath(path);
    return place && linkTarget(*place);
}

std::string PosixFileManager::resolvingSymbolicLinks(const std::string& path) const {
    if (!path.starts_with('/'))
        return path;
    std::vector<std::string> pending;
    pushComponents(path, pending);
    std::string resolved = "/";
    for (int links = 0; !pending.empty();) {
        const std::string component = std::move(pending.back());
        pending.pop_back();
        if (component.empty() || component == ".")
            continue;
        if (component == "..") {
            resolved = deletingLastPathComponent(resolved);
            continue;
        }
        std::string next = appendingPathComponent(resolved, component);
        const auto place = systemPath(next);
        const auto target = place ? linkTarget(*place) : std::nullopt;
        if (!target) {
            resolved = std::move(next);
            continue;
        }
        if (++links > kMaximumLinks)
            return path;
        if (target->starts_with('/'))
            resolved = "/";
        pushComponents(*target, pending);
    }
    return resolved;
}

std::optional<std::vector<std::string>>
PosixFileManager::contentsOfDirectory(const std::string& path) const {
    const auto place = systemPath(path);
    if (!place)
        return std::nullopt;
    const Descriptor folder(::open(place->c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    return folder ? namesIn(folder.get()) : std::nullopt;
}

OpenFileResult PosixFileManager::openFile(const std::string& path) const {
    const auto place = systemPath(path);
    if (!place)
        return {nullptr, "This is no path."};
    // Opening some devices does something, so the kind is looked at before as well as after.
    struct stat status {};
    if (::stat(place->c_str(), &status) != 0)
        return {nullptr, std::strerror(errno)};
    if (!S_ISREG(status.st_mode))
        return {nullptr, notRegular(status.st_mode)};
    Descriptor file(::open(place->c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    if (!file || ::fstat(file.get(), &status) != 0)
        return {nullptr, std::strerror(errno)};
    if (!S_ISREG(status.st_mode))
        return {nullptr, notRegular(status.st_mode)};
    return {std::make_unique<PosixInputFile>(std::move(file),
                                             static_cast<std::uint64_t>(status.st_size)),
            {}};
}

bool PosixFileManager::writeFileAtomically(const std::string& path, std::string_view bytes) {
    const auto place = systemPath(path);
    return place && posix::writeFileAtomically(*place, bytes, calls_);
}

std::string PosixFileManager::homeDirectory() const {
    const char* home = std::getenv("HOME");
    if (home && *home == '/')
        return home;
    return homeOf(::getpwuid_r, ::geteuid()).value_or("/");
}

std::optional<std::string> PosixFileManager::homeDirectoryForUser(const std::string& name) const {
    return homeOf(::getpwnam_r, name.c_str());
}

bool PosixFileManager::createDirectory(const std::string& path) {
    const auto place = systemPath(path);
    return place && ::mkdir(place->c_str(), 0777) == 0;
}

bool PosixFileManager::createSymbolicLink(const std::string& path, const std::string& target) {
    const auto place = systemPath(path);
    return place && ::symlink(target.c_str(), place->c_str()) == 0;
}

bool PosixFileManager::removeFile(const std::string& path) {
    const auto place = systemPath(path);
    return place && ::unlink(place->c_str()) == 0;
}

bool PosixFileManager::removeItem(const std::string& path) {
    const auto place = systemPath(path);
    return place && posix::removeItem(*place);
}

bool PosixFileManager::copyItem(const std::string& from, const std::string& to) {
    const auto source = systemPath(from);
    const auto destination = systemPath(to);
    return source && destination && posix::copyItem(*source, *destination, calls_);
}

bool PosixFileManager::moveFile(const std::string& from, const std::string& to) {
    const auto source = systemPath(from);
    const auto destination = systemPath(to);
    return source && destination && posix::moveFile(*source, *destination);
}

std::unique_ptr<Watch> PosixFileManager::watchFile(const std::string& path,
                                                   std::function<void()> handler) {
    const auto place = systemPath(path);
    return place ? makeInotifyFileWatch(*place, std::move(handler)) : nullptr;
}

} // namespace platform::posix

platform::FileManager& platform::defaults::fileManager() {
    static auto* const manager =
        new posix::PosixFileManager; // threads that outlive main may ask for it
    return *manager;
}
