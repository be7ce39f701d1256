#pragma once

#include "platform/base/NonCopyable.h"

#include <csignal>
#include <cstdint>

namespace apps {

class CrashJournal;
class HangTimer;

/// Handles the signals that end or interrupt the process because of a fault:
///
/// - SIGSEGV, SIGBUS, SIGILL, SIGFPE, SIGABRT, SIGTRAP, SIGSYS: records the failure, unless another
///   process sent the signal, and triggers the signal's previous action, for example a sanitizer's
///   report.
/// - kHangSignal, which the watcher sends when the main thread hangs: records the failure and
///   exits.
/// - SIGCONT: restarts the hang timer, because time in which the process was stopped does not
///   count.
///
/// A thread needs an alternate signal stack (see AlternateStack) for the handler to run after a
/// stack overflow; the constructor gives the main thread one. At most one object, which must not be
/// destroyed before the process exits.
class CrashHandler : platform::NonCopyable {
  public:
    CrashHandler(CrashJournal& journal, HangTimer& hangTimer);
};

/// Returns the address of the code that a signal interrupted, from the third argument of a handler,
/// or 0 if the processor is not known. Async-signal-safe.
std::uintptr_t interruptedAddress(const void* context);

} // namespace apps
