#pragma once

#include <optional>
#include <string>

namespace extras {

/// Returns the desktop entry of the desktop's network settings: those of the running desktop
/// (XDG_CURRENT_DESKTOP), or else any that is installed. Returns std::nullopt if none is. Reads
/// files: call it when a menu opens.
std::optional<std::string> networkSettingsEntry();

} // namespace extras
