#pragma once

#include <string>

namespace platform::posix {

/// What FileManager::removeItem promises. While a folder goes it is called
/// ".halvex-remove-<hash of its name>-<random>"; what carries such a name for the same folder was
/// left by a process that was killed meanwhile and goes with it.
bool removeItem(const std::string& path);

/// Removes what is called @p name in @p folder, with everything below it. False when something of
/// it stays. With Effort::OwnFolders, folders that refuse to be emptied are made writable.
enum class Effort { AsItIs, OwnFolders };
bool removeTree(int folder, const std::string& name, Effort effort);

} // namespace platform::posix
