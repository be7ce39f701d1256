#pragma once

#include "platform/MainThread.h"
#include "platform/base/NonCopyable.h"

#include <memory>

namespace apps {

/// Quits the main loop on SIGINT, SIGTERM and SIGHUP, so that items are unloaded in order. The
/// process is killed if it still runs 2.5 seconds later, and exits immediately on a second signal.
/// A signal that is already ignored, as under nohup, stays ignored. If the handlers cannot be
/// installed, that is logged and the signals keep their default action. At most one instance at a
/// time, and only while a QApplication exists. Main thread only.
class QuitOnSignals : platform::NonCopyable {
  public:
    enum class Sender { ThisProcess, AnotherProcess };
    /// Called in the signal handler, on any thread, so it must be async-signal-safe. @p context is
    /// the third argument of the signal handler.
    using Received = void (*)(Sender sender, const void* context);

    explicit QuitOnSignals(Received received = nullptr);
    /// Restores the default action of the signals. The process is still killed in time if it
    /// received one.
    ~QuitOnSignals();

  private:
    std::unique_ptr<platform::Watch> watch_;
};

} // namespace apps
