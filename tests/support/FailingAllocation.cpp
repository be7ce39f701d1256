#include "tests/support/FailingAllocation.h"

#include <algorithm>
#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

namespace {

constexpr int kNone = -1;

std::atomic<int> callsLeft = kNone; // until one fails; 0 afterwards
std::atomic<bool> countsOthers = false;
thread_local bool isTestThread = false;

bool fails() {
    return isTestThread != countsOthers && callsLeft > 0 && --callsLeft == 0;
}

void* allocate(std::size_t size, std::size_t alignment) {
    if (fails())
        return nullptr;
    const std::size_t rounded = (std::max<std::size_t>(size, 1) + alignment - 1) & ~(alignment - 1);
    return alignment <= alignof(std::max_align_t) ? std::malloc(rounded)
                                                  : std::aligned_alloc(alignment, rounded);
}

void* allocateOrThrow(std::size_t size, std::size_t alignment) {
    if (void* memory = allocate(size, alignment))
        return memory;
    throw std::bad_alloc();
}

} // namespace

test::FailingAllocation::FailingAllocation(int number, Thread thread) {
    isTestThread = true;
    countsOthers = thread == Thread::Others;
    callsLeft = number > 0 ? number : kNone;
}

test::FailingAllocation::~FailingAllocation() {
    callsLeft = kNone;
    isTestThread = false;
}

bool test::FailingAllocation::hasFailed() const {
    return callsLeft == 0;
}

// The forms for arrays call these.

void* operator new(std::size_t size) {
    return allocateOrThrow(size, 1);
}
void* operator new(std::size_t size, std::align_val_t alignment) {
    return allocateOrThrow(size, static_cast<std::size_t>(alignment));
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return allocate(size, 1);
}
void* operator new(std::size_t size, std::align_val_t alignment, const std::nothrow_t&) noexcept {
    return allocate(size, static_cast<std::size_t>(alignment));
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::align_val_t) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t, std::align_val_t) noexcept {
    std::free(memory);
}
