#pragma once

#include <chrono>
#include <string>

namespace platform::qt {

/// Returns whether a message bus replies to a client that connects. Qt waits for that reply without
/// a time limit, and until then blocks every other connection of the process. @p address is a D-Bus
/// server address, or empty for the system bus. Returns true for an address other than that of a
/// Unix socket, and false if the socket cannot be opened. Blocks for at most @p timeLimit.
/// Thread-safe.
bool busReplies(const std::string& address, std::chrono::milliseconds timeLimit);

} // namespace platform::qt
