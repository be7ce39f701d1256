#pragma once

#include "platform/qt/DesktopEntryFile.h"

#include <string>
#include <vector>

namespace platform::qt {

/// Starts the application of a desktop entry, or has it open @p urls (absolute paths or URLs).
/// Applications that the session bus can start are called without waiting; if that fails, which is
/// logged, and for all others, their command is run. @p token is the activation token or the
/// startup notification identifier for the new window, or empty. Returns an empty string, or the
/// reason why it cannot be started. Main thread.
std::string launchApplication(const DesktopEntryFile& file, const std::vector<std::string>& urls,
                              const std::string& token);

} // namespace platform::qt
