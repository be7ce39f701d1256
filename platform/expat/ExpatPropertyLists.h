#pragma once

namespace platform::expat {

/// Puts the process-wide reader and writer of property lists in place. Thread: before other threads
/// use it.
void install();

} // namespace platform::expat
