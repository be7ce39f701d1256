#pragma once

#include "platform/base/NonCopyable.h"

#include <csignal>
#include <functional>

namespace apps {

/// Calls a function when the process crashes (SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT) and then
/// lets the signal take its previous course, a sanitizer's report included. Destroying the object
/// restores the previous handlers. One at a time; main thread only.
class CrashHandler : platform::NonCopyable {
  public:
    /// @p crashed runs in the signal handler, on a stack of its own and on the thread that crashed.
    /// It may only do what is async-signal-safe; it may read memory but not allocate.
    explicit CrashHandler(std::function<void()> crashed);
    ~CrashHandler();

  private:
    static void handle(int signal, siginfo_t* info, void* context);

    std::function<void()> crashed_;
};

} // namespace apps
