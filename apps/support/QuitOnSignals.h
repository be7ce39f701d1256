#pragma once

#include "platform/MainThread.h"
#include "platform/base/NonCopyable.h"

#include <memory>

namespace apps {

/// Quits the main loop on SIGINT, SIGTERM and SIGHUP, so that items are unloaded in order. A signal
/// that is already ignored, as under nohup, stays ignored. If the handlers cannot be installed,
/// that is logged and the signals keep their default action. At most one instance at a time, and
/// only while a QApplication exists. Main thread only.
class QuitOnSignals : platform::NonCopyable {
  public:
    QuitOnSignals();
    /// Restores the default action of the signals.
    ~QuitOnSignals();

  private:
    std::unique_ptr<platform::Watch> watch_;
};

} // namespace apps
