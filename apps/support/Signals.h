#pragma once

#include "platform/MainThread.h"
#include "platform/base/NonCopyable.h"

#include <memory>

namespace apps {

/// Ends the main loop when the program is asked to end (SIGINT, SIGTERM, SIGHUP), so that every
/// item is unloaded in order. One at a time, while the QApplication lives.
class QuitOnSignals : platform::NonCopyable {
  public:
    QuitOnSignals();
    ~QuitOnSignals();

  private:
    std::unique_ptr<platform::Watch> watch_;
};

} // namespace apps
