#include "platform/posix/PosixFileManager.h"

#include "platform/posix/AtomicFile.h"
#include "platform/posix/Defaults.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/InotifyFileWatch.h"

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
    std::vector<char> buffer(1 << 14);
    passwd account{};
    passwd* found = nullptr;
    const int error = ::getpwuid_r(::geteuid(), &account, buffer.data(), buffer.size(), &found);
    return error == 0 && found && found->pw_dir ? found->pw_dir : "/";
}

std::unique_ptr<FileWatch> PosixFileManager::watchFile(const std::string& path,
                                                       std::function<void()> handler) {
    const auto place = systemPath(path);
    return place ? makeInotifyFileWatch(*place, std::move(handler)) : nullptr;
}

FileManager& defaultFileManager() {
    static PosixFileManager manager;
    return manager;
}

} // namespace platform::posix
