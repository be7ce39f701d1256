#include "platform/posix/CopyTree.h"

#include "platform/base/PathStrings.h"
#include "platform/posix/CopyFile.h"
#include "platform/posix/Folder.h"
#include "platform/posix/SymbolicLinks.h"
#include "platform/posix/TemporaryEntry.h"

#include <algorithm>
#include <fcntl.h>

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

/// Moves an entry. A read-only folder is made writable for the move: otherwise it would fail.
int moveInto(int from, int to, const std::string& name, SystemCalls& calls) {
    const auto status = statusOf(from, name);
    const bool readOnly = status && S_ISDIR(status->st_mode) && (status->st_mode & S_IWUSR) == 0;
    if (!readOnly)
        return calls.renameWithoutReplacing(from, name, to, name);
    const Descriptor folder = openFolder(from, name);
    if (!folder || calls.setMode(folder.get(), (status->st_mode & 0777U) | S_IWUSR) != 0)
        return -1;
    const int result = calls.renameWithoutReplacing(from, name, to, name);
    // The copy is complete and in place; if this fails, it merely stays writable.
    if (result == 0)
        static_cast<void>(calls.setMode(folder.get(), status->st_mode & 0777U));
    return result;
}

} // namespace

bool copyItem(const std::string& from, const std::string& to, SystemCalls& calls) {
    const std::string name = lastPathComponent(to);
    const Descriptor source = openFolder(deletingLastPathComponent(from), calls);
    const Descriptor target = openFolder(deletingLastPathComponent(to), calls);
    if (!source || !target || !isEntryName(name))
        return false;
    const TemporaryEntry folder(TemporaryEntry::Kind::Folder, target.get(), "copy", name, 0700,
                                calls);
    if (!folder || statusOf(target.get(), name) ||
        !TreeCopier(folder.get(), calls)
             .copy(source.get(), lastPathComponent(from), folder.get(), name) ||
        moveInto(folder.get(), target.get(), name, calls) != 0)
        return false;
    flushFolderOrLog(target.get(), to, calls);
    return true;
}

} // namespace platform::posix
