#pragma once

#include <string>
#include <vector>

namespace platform::posix {

/// The application that shows preference panes, as other programs name it, and its program.
inline constexpr const char* kSystemPreferences = "System Preferences";
inline constexpr const char* kPreferencesProgram = "halvex-preferences";

/// Starts the program, the one that came with this library or else the first in PATH, and
/// announces the launch. Whether it could be started; why not is written to @p reason.
bool startSystemPreferences(const std::vector<std::string>& arguments, std::string& reason);

} // namespace platform::posix
