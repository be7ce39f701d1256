#pragma once

#include <functional>

namespace platform {

/// Runs @p work on a new detached thread, guarded with the current owner (see Guard.h). If no
/// thread can be started or memory runs out, logs the reason and does not run @p work. Thread-safe.
void detachThread(std::function<void()> work);

} // namespace platform
