#pragma once

#include "platform/base/NonCopyable.h"

#include <csignal>
#include <functional>

namespace apps {

/// Calls a function when the process crashes (SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT) and then
/// restores and triggers the previous action of the signal, for example a sanitizer's report.
/// Destroying the object restores the previous handlers. At most one at a time. Main thread only.
class CrashHandler : platform::NonCopyable {
  public:
    /// @p crashed runs in the signal handler on the thread that crashed; on the main thread, it has
    /// a stack of its own, so that it also runs after a stack overflow. It must be
    /// async-signal-safe: it may read memory but not allocate.
    explicit CrashHandler(std::function<void()> crashed);
    ~CrashHandler();

  private:
    static void handle(int signal, siginfo_t* info, void* context);

    std::function<void()> crashed_;
};

} // namespace apps
