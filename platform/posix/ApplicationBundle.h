#pragma once

#include <optional>
#include <string>

/// Application bundles: folders whose name ends in ".app".
namespace platform::posix {

bool isApplicationBundle(const std::string& path);

/// The application bundle that a program lies in; nothing for a program of its own.
std::optional<std::string> applicationBundleOf(const std::string& program);

/// CFBundleName; the folder's name when there is none.
std::string applicationName(const std::string& bundle);

} // namespace platform::posix
