#pragma once

#include <string>

namespace platform::posix {

/// Implements FileManager::removeItem. A folder is first renamed to a temporary name with the
/// purpose "remove". If the process is killed after that, the next removal of a folder of the same
/// name also removes the rest.
bool removeItem(const std::string& path);

/// With MakeWritable, read-only folders are made writable first if the process is permitted to.
enum class Permissions { Keep, MakeWritable };

/// Removes the entry @p name of @p folder and everything below it. Returns false if anything
/// remains, and true if the entry does not exist.
bool removeTree(int folder, const std::string& name, Permissions permissions);

} // namespace platform::posix
