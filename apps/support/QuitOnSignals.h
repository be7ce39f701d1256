#pragma once

#include "platform/MainThread.h"
#include "platform/base/NonCopyable.h"

#include <memory>

namespace apps {

/// Quits the main loop on SIGINT, SIGTERM and SIGHUP, so that items are unloaded in order. A signal
/// that is ignored already, as under nohup, stays ignored. If the signals cannot be handled, that
/// is logged and they end the program as usual. At most one instance at a time, and only while a
/// QApplication exists. Main thread only.
class QuitOnSignals : platform::NonCopyable {
  public:
    QuitOnSignals();
    /// Restores the default action of the signals.
    ~QuitOnSignals();

  private:
    std::unique_ptr<platform::Watch> watch_;
};

} // namespace apps
