#pragma once

#include <cstddef>

namespace platform {

/// Asks the system for large pages below @p size bytes of memory that is about to be filled for the
/// first time: meeting small pages one at a time takes longer than filling them. Less memory than a
/// large page, or a system without them, stays as it is. Any thread.
void useLargePages(void* memory, std::size_t size);

} // namespace platform
