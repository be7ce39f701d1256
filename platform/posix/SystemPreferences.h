#pragma once

#include <string>
#include <vector>

namespace platform::posix {

/// The name by which other programs refer to the application that shows preference panes.
inline constexpr const char* kSystemPreferences = "System Preferences";

/// Starts the preferences program that is installed with this library, or else the first one in
/// PATH, and announces the launch. On failure returns false and sets @p reason.
bool startSystemPreferences(const std::vector<std::string>& arguments, std::string& reason);

} // namespace platform::posix
