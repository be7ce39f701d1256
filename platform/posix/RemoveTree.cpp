#include "platform/posix/RemoveTree.h"

#include "platform/base/PathStrings.h"
#include "platform/posix/Folder.h"
#include "platform/posix/SystemCalls.h"
#include "platform/posix/TemporaryName.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>

namespace platform::posix {
namespace {

/// Succeeds if the entry is missing: another process may be removing the same leftovers.
bool remove(int folder, const std::string& name, int flags) {
    return ::unlinkat(folder, name.c_str(), flags) == 0 || errno == ENOENT;
}

/// Returns whether permissions allow emptying the folder and all folders below it.
bool canBeEmptied(int parent, const std::string& name) {
    const Descriptor folder = openFolder(parent, name);
    const auto names = folder ? namesIn(folder.get()) : std::nullopt;
    if (!names)
        return false;
    if (!names->empty() && ::faccessat(folder.get(), ".", W_OK | X_OK, AT_EACCESS) != 0)
        return false;
    return std::ranges::all_of(*names, [&](const std::string& below) {
        const auto status = statusOf(folder.get(), below);
        return status && (!S_ISDIR(status->st_mode) || canBeEmptied(folder.get(), below));
    });
}

bool empty(int folder, Permissions permissions) {
    if (permissions == Permissions::MakeWritable)
        ::fchmod(folder, 0700);
    const auto names = namesIn(folder);
    bool all = names.has_value();
    for (const std::string& name : names.value_or(std::vector<std::string>()))
        all = removeTree(folder, name, permissions) && all;
    return all;
}

void removeLeftovers(int folder, const std::string& prefix) {
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>())) {
        if (name.starts_with(prefix))
            removeTree(folder, name, Permissions::MakeWritable);
    }
}

/// Renames the folder before removing it, so that its path never shows a partly removed folder.
bool removeFolder(int parent, const std::string& name) {
    const std::string prefix = temporaryPrefix("remove", name);
    removeLeftovers(parent, prefix);
    const auto temporary = temporaryName(prefix);
    if (!temporary || !canBeEmptied(parent, name) ||
        systemCalls().renameWithoutReplacing(parent, name, parent, *temporary) != 0)
        return false;
    if (removeTree(parent, *temporary, Permissions::Keep))
        return true;
    systemCalls().renameWithoutReplacing(parent, *temporary, parent, name);
    return false;
}

} // namespace

bool removeTree(int folder, const std::string& name, Permissions permissions) {
    const auto status = statusOf(folder, name);
    if (!status)
        return errno == ENOENT;
    if (!S_ISDIR(status->st_mode))
        return remove(folder, name, 0);
    if (permissions == Permissions::MakeWritable)
        ::fchmodat(folder, name.c_str(), 0700, 0);
    const Descriptor below = openFolder(folder, name);
    return below && empty(below.get(), permissions) && remove(folder, name, AT_REMOVEDIR);
}

bool removeItem(const std::string& path) {
    const std::string name = lastPathComponent(path);
    if (!isEntryName(name))
        return false;
    const Descriptor parent = openFolder(deletingLastPathComponent(path));
    const auto status = parent ? statusOf(parent.get(), name) : std::nullopt;
    if (!status)
        return false;
    return S_ISDIR(status->st_mode) ? removeFolder(parent.get(), name)
                                    : ::unlinkat(parent.get(), name.c_str(), 0) == 0;
}

} // namespace platform::posix
