#include "platform/posix/AtomicFile.h"

#include "platform/Log.h"
#include "platform/base/NonCopyable.h"
#include "platform/posix/CopyBytes.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/Folder.h"
#include "platform/posix/MoveFile.h"
#include "platform/posix/TemporaryName.h"

#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <optional>
#include <sys/file.h>
#include <sys/stat.h>

namespace platform::posix {
namespace {

constexpr int kMaximumLinks = 40;

struct Place {
    std::string folder;
    std::string name;
};

Place placeOf(const std::string& path) {
    const auto slash = path.rfind('/');
    if (slash == std::string::npos)
        return {".", path};
    return {path.substr(0, slash + 1), path.substr(slash + 1)};
}

/// Where the bytes are to lie: links at @p path are followed, also one to a file still to come.
std::optional<Place> finalPlace(std::string path) {
    for (int links = 0; links < kMaximumLinks; ++links) {
        Place place = placeOf(path);
        const auto target = linkTarget(path);
        if (!target)
            return place.name.empty() ? std::nullopt : std::optional(std::move(place));
        path = target->starts_with('/') ? *target : place.folder + *target;
    }
    return std::nullopt;
}

bool isLinked(int file) {
    struct stat status {};
    return ::fstat(file, &status) == 0 && status.st_nlink > 0;
}

/// Removes what writers that are gone have left for the file with this prefix.
void removeLeftovers(int folder, const std::string& prefix) {
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>())) {
        if (!name.starts_with(prefix))
            continue;
        const Descriptor file(
            ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file && ::flock(file.get(), LOCK_EX | LOCK_NB) == 0)
            ::unlinkat(folder, name.c_str(), 0);
    }
}

/// The new file beside the old one, locked as long as this lives and removed with it unless it has
/// taken the old one's place.
class TemporaryFile : NonCopyable {
  public:
    TemporaryFile(int folder, const std::string& prefix, mode_t mode, SystemCalls& calls);
    ~TemporaryFile() {
        if (file_ && !renamed_)
            ::unlinkat(folder_, name_.c_str(), 0);
    }

    explicit operator bool() const { return static_cast<bool>(file_); }
    bool takeOver(const struct stat& old);
    bool write(std::string_view bytes) { return writeAll(file_.get(), bytes, calls_); }
    bool flush() { return calls_.flush(file_.get()) == 0; }
    bool replace(const std::string& name) {
        renamed_ = calls_.rename(folder_, name_, name) == 0;
        return renamed_;
    }

  private:
    int folder_;
    SystemCalls& calls_;
    std::string name_;
    Descriptor file_;
    bool renamed_ = false;
};

TemporaryFile::TemporaryFile(int folder, const std::string& prefix, mode_t mode, SystemCalls& calls)
    : folder_(folder), calls_(calls) {
    for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
        const auto name = temporaryName(prefix);
        if (!name)
            return;
        name_ = *name;
        Descriptor file(calls.openAt(folder, name_, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, mode));
        if (!file && errno != EEXIST)
            return;
        // Before the lock is ours another writer may have taken the file for a leftover. Where
        // files cannot be locked, none is ever taken for one.
        const bool lost = !file ||
                          (::flock(file.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK) ||
                          !isLinked(file.get());
        if (lost)
            continue;
        file_ = std::move(file);
        return;
    }
}

/// Gives the new file the old one's owner, where that is permitted, and its mode.
bool TemporaryFile::takeOver(const struct stat& old) {
    struct stat mine {};
    if (::fstat(file_.get(), &mine) != 0)
        return false;
    const bool sameOwner = mine.st_uid == old.st_uid && mine.st_gid == old.st_gid;
    if (sameOwner && mine.st_mode == old.st_mode) // as on file systems that have no modes
        return true;
    if (sameOwner || ::fchown(file_.get(), old.st_uid, old.st_gid) == 0)
        return calls_.setMode(file_.get(), old.st_mode & 07777U) == 0;
    // The group alone may be ours to give; with another owner the mode grants nothing special.
    [[maybe_unused]] const int ignored = ::fchown(file_.get(), static_cast<uid_t>(-1), old.st_gid);
    return calls_.setMode(file_.get(), old.st_mode & 0777U) == 0;
}

} // namespace

bool writeFileAtomically(const std::string& path, std::string_view bytes, SystemCalls& calls) {
    const std::optional<Place> place = finalPlace(path);
    if (!place)
        return false;
    const Descriptor folder(calls.open(place->folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!folder)
        return false;
    struct stat old {};
    const bool exists =
        ::fstatat(folder.get(), place->name.c_str(), &old, AT_SYMLINK_NOFOLLOW) == 0;
    if (exists ? !S_ISREG(old.st_mode) : errno != ENOENT)
        return false;

    const std::string prefix = temporaryPrefix("save", place->name);
    removeLeftovers(folder.get(), prefix);
    TemporaryFile file(folder.get(), prefix, exists ? 0600 : 0666, calls);
    if (!file || (exists && !file.takeOver(old)) || !file.write(bytes) || !file.flush() ||
        !file.replace(place->name))
        return false;
    if (calls.flush(folder.get()) != 0)
        logLine("%@ is written, but its folder could not be flushed to the disk: %@", path,
                std::strerror(errno));
    return true;
}

} // namespace platform::posix
