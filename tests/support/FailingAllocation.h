#pragma once

#include "platform/base/NonCopyable.h"

namespace test {

/// Makes one call of operator new fail during the lifetime of the object. A program that links
/// FailingAllocation.cpp has its own operator new, which throws std::bad_alloc for this call.
class FailingAllocation : platform::NonCopyable {
  public:
    enum class Thread { Current, Others };

    /// Fails the call with this number, counted from 1, on this thread or on the other ones. With
    /// 0, none fails.
    explicit FailingAllocation(int number, Thread thread = Thread::Current);
    ~FailingAllocation();

    /// Returns whether there were enough calls for one to fail.
    bool hasFailed() const;
};

} // namespace test
