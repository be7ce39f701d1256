#pragma once

#include <string>

namespace apps {

/// Returns @p path as an absolute path without ".", ".." and trailing slashes. Relative paths are
/// resolved against the current folder; symbolic links are not resolved. Returns @p path unchanged
/// if it is empty or the current folder cannot be determined.
std::string absolutePath(const std::string& path);

} // namespace apps
