#pragma once

#include <csignal>

namespace apps {

/// Sent by the watcher to the main thread of a menu bar that hangs. Items are unlikely to use it.
inline constexpr int kHangSignal = SIGXCPU;

} // namespace apps
