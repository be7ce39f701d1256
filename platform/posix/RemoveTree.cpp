#include "platform/posix/RemoveTree.h"

#include "platform/Operation.h"
#include "platform/base/PathStrings.h"
#include "platform/posix/CopyFile.h"
#include "platform/posix/Folder.h"
#include "platform/posix/TemporaryName.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/file.h>
#include <utility>

namespace platform::posix {
namespace {

/// Succeeds if the entry is missing: another process may be removing the same leftovers.
bool remove(int folder, const std::string& name, int flags) {
    return ::unlinkat(folder, name.c_str(), flags) == 0 || errno == ENOENT;
}

class RemovalCheck {
  public:
    RemovalCheck(std::string temporary, SystemCalls& calls)
        : temporary_(std::move(temporary)), calls_(calls) {}

    bool run(int folder, const std::string& name) { return canBeEmptied(folder, name) || damaged_; }

  private:
    bool canBeEmptied(int parent, const std::string& name) {
        const auto status = statusOf(parent, name);
        if (!status || !S_ISDIR(status->st_mode))
            return status.has_value();
        const Descriptor folder = openFolder(parent, name);
        const auto names = folder ? namesIn(folder.get()) : std::nullopt;
        const bool result =
            names && std::ranges::all_of(*names, [&](const std::string& below) {
                return canBeEmptied(folder.get(), below) && canBeRemoved(folder.get(), below);
            });
        if (folder)
            static_cast<void>(copyTimes(folder.get(), *status));
        return result;
    }
    bool canBeRemoved(int folder, const std::string& name) {
        if (calls_.renameWithoutReplacing(folder, name, folder, temporary_) != 0)
            return false;
        damaged_ = damaged_ || calls_.renameWithoutReplacing(folder, temporary_, folder, name) != 0;
        return true;
    }

    std::string temporary_;
    SystemCalls& calls_;
    bool damaged_ = false; ///< an entry could not be renamed back
};

bool empty(int folder) {
    ::fchmod(folder, 0700);
    const auto names = namesIn(folder);
    bool all = names.has_value();
    for (const std::string& name : names.value_or(std::vector<std::string>()))
        all = removeTree(folder, name) && all;
    return all;
}

/// Renames the folder before checking and removing it, so that its path never shows a partly
/// removed folder.
bool removeFolder(int parent, const std::string& name, SystemCalls& calls) {
    removeLeftovers(parent, name);
    if (::unlinkat(parent, name.c_str(), AT_REMOVEDIR) == 0)
        return true;
    if (errno != ENOTEMPTY && errno != EEXIST)
        return false;
    const Descriptor folder = openFolder(parent, name);
    const auto temporary = temporaryName(temporaryPrefix(name));
    if (!folder || !temporary)
        return false;
    // Keeps other processes from removing the folder as a leftover. If one of them has the lock,
    // the folder is safe as well.
    ::flock(folder.get(), LOCK_EX | LOCK_NB);
    if (calls.renameWithoutReplacing(parent, name, parent, *temporary) != 0)
        return false;
    if (!guardedStep([&] { return canBeEmptied(parent, *temporary, calls); }) &&
        calls.renameWithoutReplacing(parent, *temporary, parent, name) == 0)
        return false;
    removeTemporaryTree(parent, *temporary);
    return true;
}

} // namespace

bool canBeEmptied(int folder, const std::string& name, SystemCalls& calls) {
    auto temporary = temporaryName(temporaryPrefix(name));
    return temporary && RemovalCheck(std::move(*temporary), calls).run(folder, name);
}

void removeLeftovers(int folder, const std::string& finalName) {
    const std::string prefix = temporaryPrefix(finalName);
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>())) {
        if (!name.starts_with(prefix))
            continue;
        const Descriptor entry(
            ::openat(folder, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (entry && ::flock(entry.get(), LOCK_EX | LOCK_NB) == 0)
            removeTree(folder, name);
    }
}

bool removeTree(int folder, const std::string& name) {
    const auto status = statusOf(folder, name);
    if (!status)
        return errno == ENOENT;
    if (!S_ISDIR(status->st_mode))
        return remove(folder, name, 0);
    ::fchmodat(folder, name.c_str(), 0700, 0);
    const Descriptor below = openFolder(folder, name);
    return below && empty(below.get()) && remove(folder, name, AT_REMOVEDIR);
}

void removeTemporaryTree(int folder, const std::string& name) {
    const auto remove = [&] { return removeTree(folder, name); };
    if (!guardedStep(remove)) // memory may have run out only for a moment
        guardedStep(remove);
}

bool removeItem(const std::string& path, SystemCalls& calls) {
    const std::string name = lastPathComponent(path);
    if (!isEntryName(name))
        return false;
    const Descriptor parent = openFolder(deletingLastPathComponent(path));
    const auto status = parent ? statusOf(parent.get(), name) : std::nullopt;
    if (!status)
        return false;
    return S_ISDIR(status->st_mode) ? removeFolder(parent.get(), name, calls)
                                    : ::unlinkat(parent.get(), name.c_str(), 0) == 0;
}

} // namespace platform::posix
