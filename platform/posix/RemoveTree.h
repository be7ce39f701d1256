#pragma once

#include "platform/posix/SystemCalls.h"

#include <string>

namespace platform::posix {

/// Implements FileManager::removeItem with @p calls. A folder is first renamed to a temporary name
/// and locked with flock. If the process is killed after that, removeLeftovers removes the rest.
bool removeItem(const std::string& path, SystemCalls& calls);

/// Returns whether the entry @p name of @p folder can be emptied: true if it is not a folder, and
/// otherwise if everything below it can be removed. To find out, renames each entry below it and
/// back, because this requires the same as removing the entry: permissions, no sticky folder of
/// another user, no immutable file, no mount point. Call it only for an entry with a temporary
/// name. If an entry cannot be renamed back, returns true: the tree is not worth keeping.
bool canBeEmptied(int folder, const std::string& name, SystemCalls& calls);

/// Removes all unlocked entries of @p folder with temporary names for @p finalName: the processes
/// that created them have exited.
void removeLeftovers(int folder, const std::string& finalName);

/// Removes the entry @p name of @p folder and everything below it. Makes read-only folders writable
/// first if permitted to. Returns false if anything remains, and true if the entry does not exist.
bool removeTree(int folder, const std::string& name);

/// Same as removeTree, for an entry that nothing else will remove: tries again if memory runs out.
/// Does not throw.
void removeTemporaryTree(int folder, const std::string& name);

} // namespace platform::posix
