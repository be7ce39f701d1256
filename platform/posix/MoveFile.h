#pragma once

#include <string>

namespace platform::posix {

/// Implements FileManager::moveFile. A copy on another file system is a TemporaryEntry until it is
/// complete.
bool moveFile(const std::string& from, const std::string& to);

} // namespace platform::posix
