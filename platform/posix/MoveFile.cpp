#include "platform/posix/MoveFile.h"

#include "platform/base/NonCopyable.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/CopyBytes.h"
#include "platform/posix/Descriptor.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>

namespace platform::posix {
namespace {

bool renameWithoutReplacing(const std::string& from, const std::string& to) {
    return systemCalls().renameWithoutReplacing(AT_FDCWD, from, AT_FDCWD, to) == 0;
}

/// A new file in the folder of another one, removed with this unless it has taken that one's place.
class Copy : NonCopyable {
  public:
    explicit Copy(const std::string& destination)
        : folder_(deletingLastPathComponent(destination)),
          path_(appendingPathComponent(folder_, ".halvex-move-XXXXXX")),
          file_(::mkostemp(path_.data(), O_CLOEXEC)) {}
    ~Copy() {
        if (file_ && !inPlace_)
            ::unlink(path_.c_str());
    }

    explicit operator bool() const { return static_cast<bool>(file_); }
    bool takeBytes(int source) { return copyBytes(source, file_.get(), systemCalls()); }
    bool takeAttributes(const struct stat& source);
    bool moveTo(const std::string& destination);

  private:
    std::string folder_;
    std::string path_;
    Descriptor file_;
    bool inPlace_ = false;
};

bool Copy::takeAttributes(const struct stat& source) {
    // With another owner the mode grants nothing special.
    const bool owned = ::fchown(file_.get(), source.st_uid, source.st_gid) == 0;
    const mode_t mode = source.st_mode & (owned ? 07777U : 0777U);
    const std::array<timespec, 2> times{source.st_atim, source.st_mtim};
    return ::fchmod(file_.get(), mode) == 0 && ::futimens(file_.get(), times.data()) == 0;
}

bool Copy::moveTo(const std::string& destination) {
    if (::fsync(file_.get()) != 0 || !renameWithoutReplacing(path_, destination))
        return false;
    inPlace_ = true;
    const Descriptor folder(::open(folder_.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (folder && ::fsync(folder.get()) == 0)
        return true;
    ::unlink(destination.c_str());
    return false;
}

bool copyFile(const std::string& from, const std::string& to) {
    const Descriptor source(::open(from.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!source || ::fstat(source.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    Copy copy(to);
    return copy && copy.takeBytes(source.get()) && copy.takeAttributes(status) && copy.moveTo(to);
}

} // namespace

std::optional<std::string> linkTarget(const std::string& path) {
    std::array<char, PATH_MAX> target{};
    const ssize_t length = ::readlink(path.c_str(), target.data(), target.size());
    if (length < 0)
        return std::nullopt;
    return std::string(target.data(), static_cast<std::size_t>(length));
}

bool moveFile(const std::string& from, const std::string& to) {
    if (renameWithoutReplacing(from, to))
        return true;
    if (errno != EXDEV)
        return false;
    const auto target = linkTarget(from);
    const bool copied = target ? ::symlink(target->c_str(), to.c_str()) == 0 : copyFile(from, to);
    if (!copied)
        return false;
    if (::unlink(from.c_str()) == 0)
        return true;
    ::unlink(to.c_str());
    return false;
}

} // namespace platform::posix
