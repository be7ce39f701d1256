#pragma once

#include <optional>
#include <string>

namespace platform::posix {

/// What FileManager::moveFile promises. While a copy is made on another file system it is called
/// ".halvex-move-<random>" and lies in the folder of @p to; only a process that is killed meanwhile
/// leaves it there.
bool moveFile(const std::string& from, const std::string& to);

/// What the symbolic link at @p path holds; nothing when there is no link.
std::optional<std::string> linkTarget(const std::string& path);

} // namespace platform::posix
