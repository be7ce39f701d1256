#include "platform/posix/CopyTree.h"

#include "platform/Log.h"
#include "platform/base/NonCopyable.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/CopyBytes.h"
#include "platform/posix/Folder.h"
#include "platform/posix/RemoveTree.h"
#include "platform/posix/TemporaryName.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstring>
#include <fcntl.h>
#include <limits.h>
#include <sys/file.h>

namespace platform::posix {
namespace {

/// Removes what makers that are gone have left for the place with this prefix.
void removeLeftovers(int folder, const std::string& prefix) {
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>())) {
        if (!name.starts_with(prefix))
            continue;
        const Descriptor left = openFolder(folder, name);
        if (left && ::flock(left.get(), LOCK_EX | LOCK_NB) == 0)
            removeTree(folder, name, Effort::OwnFolders);
    }
}

/// The folder that the copy is made in, locked as long as this lives and removed with it.
class Workshop : NonCopyable {
  public:
    Workshop(int parent, const std::string& prefix, SystemCalls& calls);
    ~Workshop() {
        if (folder_)
            removeTree(parent_, name_, Effort::OwnFolders);
    }

    explicit operator bool() const { return static_cast<bool>(folder_); }
    int get() const { return folder_.get(); }

  private:
    int parent_;
    std::string name_;
    Descriptor folder_;
};

Workshop::Workshop(int parent, const std::string& prefix, SystemCalls& calls) : parent_(parent) {
    for (int attempt = 0; attempt < kMaximumAttempts; ++attempt) {
        const auto name = temporaryName(prefix);
        if (!name || (calls.makeFolder(parent, *name, 0700) != 0 && errno != EEXIST))
            return;
        Descriptor folder = openFolder(parent, *name);
        // Before the lock is ours another maker may have taken the folder for a leftover. Where
        // folders cannot be locked, none is ever taken for one.
        const bool lost =
            !folder || (::flock(folder.get(), LOCK_EX | LOCK_NB) != 0 && errno == EWOULDBLOCK);
        struct stat mine {};
        const auto there = statusOf(parent, *name);
        if (lost || !there || ::fstat(folder.get(), &mine) != 0 || !isSameFile(*there, mine))
            continue;
        name_ = *name;
        folder_ = std::move(folder);
        return;
    }
}

/// One copy under way. Each operation puts what is called @p name in @p source under the same or
/// another name into @p target.
class Copier {
  public:
    Copier(const Workshop& workshop, SystemCalls& calls) : calls_(calls) {
        ::fstat(workshop.get(), &workshop_);
    }

    bool copy(int source, const std::string& name, int target, const std::string& newName);

  private:
    bool copyLink(int source, const std::string& name, int target, const std::string& newName);
    bool copyFile(int source, const std::string& name, int target, const std::string& newName);
    bool copyFolder(int source, const std::string& name, int target, const std::string& newName);
    bool finish(int copy, const struct stat& original);

    SystemCalls& calls_;
    struct stat workshop_ {};
};

bool Copier::copy(int source, const std::string& name, int target, const std::string& newName) {
    const auto status = statusOf(source, name);
    switch (status ? status->st_mode & S_IFMT : 0) {
    case S_IFLNK:
        return copyLink(source, name, target, newName);
    case S_IFREG:
        return copyFile(source, name, target, newName);
    case S_IFDIR:
        return copyFolder(source, name, target, newName);
    default: // pipes and devices are no part of any bundle
        return false;
    }
}

bool Copier::copyLink(int source, const std::string& name, int target, const std::string& newName) {
    std::array<char, PATH_MAX> buffer{};
    const ssize_t length = ::readlinkat(source, name.c_str(), buffer.data(), buffer.size());
    return length >= 0 &&
           calls_.makeLink({buffer.data(), static_cast<std::size_t>(length)}, target, newName) == 0;
}

bool Copier::copyFile(int source, const std::string& name, int target, const std::string& newName) {
    const Descriptor original(
        ::openat(source, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!original || ::fstat(original.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return false;
    const Descriptor copy(
        calls_.openAt(target, newName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return copy && copyBytes(original.get(), copy.get(), calls_) && finish(copy.get(), status);
}

bool Copier::copyFolder(int source, const std::string& name, int target,
                        const std::string& newName) {
    const Descriptor original = openFolder(source, name);
    struct stat status {};
    // A folder that is copied into itself would never come to an end.
    if (!original || ::fstat(original.get(), &status) != 0 || isSameFile(status, workshop_) ||
        calls_.makeFolder(target, newName, 0700) != 0)
        return false;
    const Descriptor copy = openFolder(target, newName);
    const auto names = copy ? namesIn(original.get()) : std::nullopt;
    return names &&
           std::ranges::all_of(*names,
                               [&](const std::string& below) {
                                   return this->copy(original.get(), below, copy.get(), below);
                               }) &&
           finish(copy.get(), status);
}

/// The copy belongs to who makes it, so its mode grants nothing special.
bool Copier::finish(int copy, const struct stat& original) {
    const std::array<timespec, 2> times{original.st_atim, original.st_mtim};
    return calls_.setMode(copy, original.st_mode & 0777U) == 0 &&
           ::futimens(copy, times.data()) == 0 && calls_.flush(copy) == 0;
}

/// Only a folder that may be written can be moved into another one.
int moveInto(int from, int to, const std::string& name, SystemCalls& calls) {
    const auto status = statusOf(from, name);
    const bool readOnly = status && S_ISDIR(status->st_mode) && (status->st_mode & S_IWUSR) == 0;
    if (!readOnly)
        return calls.renameWithoutReplacing(from, name, to, name);
    const Descriptor folder = openFolder(from, name);
    if (!folder || calls.setMode(folder.get(), (status->st_mode & 0777U) | S_IWUSR) != 0)
        return -1;
    const int result = calls.renameWithoutReplacing(from, name, to, name);
    // Whole and in its place already: who cannot have it read-only has it writable.
    if (result == 0)
        static_cast<void>(calls.setMode(folder.get(), status->st_mode & 0777U));
    return result;
}

} // namespace

bool copyItem(const std::string& from, const std::string& to, SystemCalls& calls) {
    const std::string name = lastPathComponent(to);
    const std::string folder = deletingLastPathComponent(to);
    const Descriptor source(
        calls.open(deletingLastPathComponent(from), O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    const Descriptor target(calls.open(folder, O_RDONLY | O_DIRECTORY | O_CLOEXEC, 0));
    if (!source || !target || name.empty() || name == "/" || name == "." || name == "..")
        return false;
    const std::string prefix = temporaryPrefix("copy", name);
    removeLeftovers(target.get(), prefix);
    if (statusOf(target.get(), name))
        return false;
    const Workshop workshop(target.get(), prefix, calls);
    if (!workshop ||
        !Copier(workshop, calls)
             .copy(source.get(), lastPathComponent(from), workshop.get(), name) ||
        moveInto(workshop.get(), target.get(), name, calls) != 0)
        return false;
    if (calls.flush(target.get()) != 0)
        logLine("%@ is copied, but its folder could not be flushed to the disk: %@", to,
                std::strerror(errno));
    return true;
}

} // namespace platform::posix
