#pragma once

#include <string>

namespace apps {

/// Returns @p path as an absolute path without ".", ".." and trailing slashes. A relative path
/// starts in the current folder. Symbolic links are not resolved.
std::string absolutePath(const std::string& path);

} // namespace apps
