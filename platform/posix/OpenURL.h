#pragma once

#include <string>

namespace platform::posix {

/// Starts the desktop's program for a URL by way of xdg-open, without a shell, in a session of its
/// own; it logs where this program does. The answer is whether xdg-open could be started. It is
/// false for what does not begin with a letter, as every URL does: xdg-open might take it for an
/// option.
bool openURL(const std::string& url);

} // namespace platform::posix
