#pragma once

#include <string>

namespace platform::posix {

/// Implements FileManager::removeItem. A folder is first renamed to a temporary name with the
/// purpose "remove"; what a process killed after that has left is removed along with the next
/// folder of the same name.
bool removeItem(const std::string& path);

/// MakeWritable also empties read-only folders, as far as the process may change their modes.
enum class Permissions { Keep, MakeWritable };

/// Removes the entry @p name of @p folder and everything below it. Returns false if part of it is
/// left, true if there is no such entry.
bool removeTree(int folder, const std::string& name, Permissions permissions);

} // namespace platform::posix
