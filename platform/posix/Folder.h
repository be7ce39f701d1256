#pragma once

#include "platform/posix/Descriptor.h"

#include <optional>
#include <string>
#include <sys/stat.h>
#include <vector>

/// Steps through a tree of folders that never follow a symbolic link out of it.
namespace platform::posix {

/// Opens the folder called @p name in @p folder; none when it is something else, or a link.
Descriptor openFolder(int folder, const std::string& name);

/// The names in an open folder without "." and ".."; nothing when it cannot be read.
std::optional<std::vector<std::string>> namesIn(int folder);

/// What is called @p name in @p folder, a link itself and not what it points to.
std::optional<struct stat> statusOf(int folder, const std::string& name);

bool isSameFile(const struct stat& one, const struct stat& other);

} // namespace platform::posix
