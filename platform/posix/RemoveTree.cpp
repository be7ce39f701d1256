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

/// Somebody else may be removing the same leftovers.
bool remove(int folder, const std::string& name, int flags) {
    return ::unlinkat(folder, name.c_str(), flags) == 0 || errno == ENOENT;
}

/// Whether a folder and all folders below it can be emptied, as far as permissions say.
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

bool empty(int folder, Effort effort) {
    if (effort == Effort::OwnFolders)
        ::fchmod(folder, 0700);
    const auto names = namesIn(folder);
    bool all = names.has_value();
    for (const std::string& name : names.value_or(std::vector<std::string>()))
        all = removeTree(folder, name, effort) && all;
    return all;
}

void removeLeftovers(int folder, const std::string& prefix) {
    for (const std::string& name : namesIn(folder).value_or(std::vector<std::string>())) {
        if (name.starts_with(prefix))
            removeTree(folder, name, Effort::OwnFolders);
    }
}

/// A folder leaves its name in one step, so that no half of it is ever taken for the whole.
bool removeFolder(int parent, const std::string& name) {
    const std::string prefix = temporaryPrefix("remove", name);
    removeLeftovers(parent, prefix);
    const auto aside = temporaryName(prefix);
    if (!aside || !canBeEmptied(parent, name) ||
        systemCalls().renameWithoutReplacing(parent, name, parent, *aside) != 0)
        return false;
    if (removeTree(parent, *aside, Effort::AsItIs))
        return true;
    systemCalls().renameWithoutReplacing(parent, *aside, parent, name);
    return false;
}

} // namespace

bool removeTree(int folder, const std::string& name, Effort effort) {
    const auto status = statusOf(folder, name);
    if (!status)
        return errno == ENOENT;
    if (!S_ISDIR(status->st_mode))
        return remove(folder, name, 0);
    if (effort == Effort::OwnFolders)
        ::fchmodat(folder, name.c_str(), 0700, 0);
    const Descriptor below = openFolder(folder, name);
    return below && empty(below.get(), effort) && remove(folder, name, AT_REMOVEDIR);
}

bool removeItem(const std::string& path) {
    const std::string name = lastPathComponent(path);
    if (name.empty() || name == "/" || name == "." || name == "..")
        return false;
    const Descriptor parent(
        ::open(deletingLastPathComponent(path).c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    const auto status = parent ? statusOf(parent.get(), name) : std::nullopt;
    if (!status)
        return false;
    return S_ISDIR(status->st_mode) ? removeFolder(parent.get(), name)
                                    : ::unlinkat(parent.get(), name.c_str(), 0) == 0;
}

} // namespace platform::posix
