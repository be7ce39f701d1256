#pragma once

#include <optional>
#include <string>

/// Application bundles: bundles in a folder whose name ends in ".app".
namespace platform::posix {

bool isApplicationBundle(const std::string& path);

/// Returns the path of the application bundle that contains @p program, or std::nullopt if the
/// program is not part of one.
std::optional<std::string> applicationBundleOf(const std::string& program);

/// Returns CFBundleName or, without one, the name of the folder without its extension.
std::string applicationName(const std::string& bundle);

} // namespace platform::posix
