#pragma once

#include <cstddef>

namespace platform {

/// Requests large pages for @p size bytes of memory that has not been written to yet, because page
/// faults on small pages can take longer than filling the memory. Does nothing for less memory than
/// a large page and on systems without large pages. Thread-safe.
void useLargePages(void* memory, std::size_t size);

} // namespace platform
