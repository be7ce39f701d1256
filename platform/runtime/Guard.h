#pragma once

#include <functional>
#include <string>

namespace platform {

/// Runs code of a plug-in, such as an operation of a menu extra or a handler that it registered.
/// Exceptions are swallowed and logged as "%@ raised an exception: %@   reason: %@" with @p owner,
/// the plug-in's identifier. Returns false after an exception. Calls may nest. Thread-safe.
bool runGuarded(const std::string& owner, const std::function<void()>& code);

/// Returns the owner of the code that this thread is running; empty outside of runGuarded. Code
/// that stores a handler also stores the current owner, to pass it to runGuarded later.
/// Async-signal-safe.
const std::string& currentOwner();

} // namespace platform
