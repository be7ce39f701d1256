#include "platform/base/LargePages.h"

#include <memory>
#include <sys/mman.h>

namespace platform {

void useLargePages(void* memory, std::size_t size) {
    constexpr std::size_t kLargePage = std::size_t{2} << 20; // bytes, on most processors
    if (std::align(kLargePage, kLargePage, memory, size))
        ::madvise(memory, size, MADV_HUGEPAGE);
}

} // namespace platform
