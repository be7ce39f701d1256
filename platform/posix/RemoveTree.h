#pragma once

#include <string>

namespace platform::posix {

/// Implements FileManager::removeItem. A folder is first renamed to a temporary name with the
/// purpose "remove". If the process is killed after that, the next removal of a folder of the same
/// name removes the rest.
bool removeItem(const std::string& path);

/// MakeWritable also empties read-only folders, as far as the process may change their modes.
enum class Permissions { Keep, MakeWritable };

/// Removes the entry @p name of @p folder and everything below it. Returns false if part of it is
/// left, true if there is no such entry.
bool removeTree(int folder, const std::string& name, Permissions permissions);

} // namespace platform::posix
