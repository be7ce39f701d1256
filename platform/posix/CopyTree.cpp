#include "platform/posix/CopyTree.h"

#include "platform/Operation.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/CopyFile.h"
#include "platform/posix/Folder.h"
#include "platform/posix/RemoveTree.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/TemporaryEntry.h"

#include <algorithm>
#include <fcntl.h>
#include <optional>

namespace platform::posix {
namespace {

/// Copies a tree into the open folder @p destination. Each operation copies the entry @p name of
/// the folder @p source to the entry @p newName of the folder @p target.
class TreeCopier {
  public:
    TreeCopier(int destination, SystemCalls& calls) : calls_(calls) {
        ::fstat(destination, &destination_);
    }

    bool copy(int source, const std::string& name, int target, const std::string& newName);

  private:
    bool copyLink(int source, const std::string& name, int target, const std::string& newName);
    bool copyFile(int source, const std::string& name, int target, const std::string& newName);
    bool copyFolder(int source, const std::string& name, int target, const std::string& newName);
    bool finish(int copy, const struct stat& original);

    SystemCalls& calls_;
    struct stat destination_ {};
};

bool TreeCopier::copy(int source, const std::string& name, int target, const std::string& newName) {
    const auto status = statusOf(source, name);
    switch (status ? status->st_mode & S_IFMT : 0) {
    case S_IFLNK:
        return copyLink(source, name, target, newName);
    case S_IFREG:
        return copyFile(source, name, target, newName);
    case S_IFDIR:
        return copyFolder(source, name, target, newName);
    default: // no bundle contains pipes or devices
        return false;
    }
}

bool TreeCopier::copyLink(int source, const std::string& name, int target,
                          const std::string& newName) {
    const auto held = linkTarget(source, name);
    return held && calls_.makeLink(*held, target, newName) == 0;
}

bool TreeCopier::copyFile(int source, const std::string& name, int target,
                          const std::string& newName) {
    struct stat status {};
    const Descriptor original = openRegularFile(source, name, status);
    if (!original)
        return false;
    const Descriptor copy(
        calls_.openAt(target, newName, O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    return copy && copyBytes(original.get(), copy.get(), calls_) && finish(copy.get(), status);
}

bool TreeCopier::copyFolder(int source, const std::string& name, int target,
                            const std::string& newName) {
    const Descriptor original = openFolder(source, name);
    struct stat status {};
    // Copying a folder into itself would never end.
    if (!original || ::fstat(original.get(), &status) != 0 || isSameFile(status, destination_) ||
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

/// The copy belongs to the user who makes it, so it does not get the set-user and set-group bits.
bool TreeCopier::finish(int copy, const struct stat& original) {
    return calls_.setMode(copy, original.st_mode & 0777U) == 0 && copyTimes(copy, original) &&
           calls_.flush(copy) == 0;
}

/// Makes a read-only folder writable for its lifetime: otherwise it could not be moved.
class Movable : NonCopyable {
  public:
    Movable(int parent, const std::string& name, SystemCalls& calls) : calls_(calls) {
        const auto status = statusOf(parent, name);
        if (!status || !S_ISDIR(status->st_mode) || (status->st_mode & S_IWUSR) != 0)
            return;
        mode_ = status->st_mode & 0777U;
        folder_ = openFolder(parent, name);
        if (folder_)
            static_cast<void>(calls_.setMode(folder_.get(), mode_ | S_IWUSR));
    }
    ~Movable() {
        if (folder_)
            static_cast<void>(calls_.setMode(folder_.get(), mode_));
    }

  private:
    SystemCalls& calls_;
    mode_t mode_ = 0;
    Descriptor folder_;
};

/// A complete copy of @p from in a TemporaryEntry in the folder of @p to.
class PreparedCopy : NonCopyable {
  public:
    /// On failure the object converts to false.
    PreparedCopy(const std::string& from, const std::string& to, SystemCalls& calls)
        : to_(to), name_(lastPathComponent(to)), calls_(calls),
          target_(openFolder(deletingLastPathComponent(to), calls)) {
        const Descriptor source = openFolder(deletingLastPathComponent(from), calls);
        if (!source || !target_ || !isEntryName(name_))
            return;
        folder_.emplace(TemporaryEntry::Kind::Folder, target_.get(), name_, 0700, calls);
        isComplete_ =
            *folder_ && TreeCopier(folder_->get(), calls)
                            .copy(source.get(), lastPathComponent(from), folder_->get(), name_);
    }

    explicit operator bool() const { return isComplete_; }

    /// Moves the copy to its final path, unless something exists there.
    bool moveIntoPlace() {
        const Movable copy(folder_->get(), name_, calls_);
        if (calls_.renameWithoutReplacing(folder_->get(), name_, target_.get(), name_) != 0)
            return false;
        flushFolderOrLog(target_.get(), to_, calls_);
        return true;
    }

    /// Exchanges the copy with the old item, which is removed when this object is destroyed. If the
    /// old item cannot be removed, exchanges them again and returns NotRemoved. Returns
    /// std::nullopt if they cannot be exchanged.
    std::optional<Replacement> exchange() {
        const Movable copy(folder_->get(), name_, calls_);
        if (calls_.exchange(folder_->get(), target_.get(), name_) != 0)
            return std::nullopt;
        if (!guardedStep([&] { return canBeEmptied(folder_->get(), name_, calls_); }) &&
            calls_.exchange(folder_->get(), target_.get(), name_) == 0)
            return Replacement::NotRemoved;
        flushFolderOrLog(target_.get(), to_, calls_);
        return Replacement::Replaced;
    }

  private:
    std::string to_;
    std::string name_;
    SystemCalls& calls_;
    Descriptor target_;
    std::optional<TemporaryEntry> folder_;
    bool isComplete_ = false;
};

} // namespace

bool copyItem(const std::string& from, const std::string& to, SystemCalls& calls) {
    if (statusOf(AT_FDCWD, to))
        return false;
    PreparedCopy copy(from, to, calls);
    return copy && copy.moveIntoPlace();
}

Replacement replaceItem(const std::string& from, const std::string& to, SystemCalls& calls) {
    PreparedCopy copy(from, to, calls);
    if (const auto result = copy ? copy.exchange() : std::nullopt)
        return *result;
    if (!removeItem(to, calls))
        return Replacement::NotRemoved;
    // The removal may have freed the space that preparing the copy lacked.
    const bool copied = copy ? copy.moveIntoPlace() : copyItem(from, to, calls);
    return copied ? Replacement::Replaced : Replacement::NotCopied;
}

} // namespace platform::posix
