#pragma once

#include "platform/base/NonCopyable.h"

#include <array>
#include <csignal>
#include <cstddef>

namespace apps {

/// A stack for the signal handlers of the current thread, so that they also run after a stack
/// overflow. Must be destroyed on the thread that created it.
class AlternateStack : platform::NonCopyable {
  public:
    AlternateStack() {
        const stack_t stack{.ss_sp = memory_.data(), .ss_flags = 0, .ss_size = memory_.size()};
        sigaltstack(&stack, &previous_);
    }
    ~AlternateStack() { sigaltstack(&previous_, nullptr); }

  private:
    alignas(std::max_align_t) std::array<std::byte, 32768> memory_;
    stack_t previous_{};
};

} // namespace apps
