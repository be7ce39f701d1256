#pragma once

#include <functional>
#include <string>

namespace platform {

/// Runs code that somebody else wrote: a menu extra's operation, a handler that it registered.
/// Whatever the code throws is caught here and logged as "%@ raised an exception: %@   reason: %@"
/// with the owner. Gives whether the code came to its end. Nests. Any thread.
bool runGuarded(const std::string& owner, const std::function<void()>& code);

/// The owner whose code this thread is running; empty outside of runGuarded. Who keeps a handler
/// for later asks for the owner with it, and runs the handler under that name.
const std::string& currentOwner();

} // namespace platform
