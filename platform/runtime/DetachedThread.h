#pragma once

#include <functional>

namespace platform {

/// Runs @p work on a thread of its own that nobody waits for, under the name of the owner whose
/// code asks for it (see Guard.h); what it throws is logged and goes no further. When there can be
/// no more threads a log line says so, and @p work is not done. Any thread.
void detachThread(std::function<void()> work);

} // namespace platform
