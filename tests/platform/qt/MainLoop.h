#pragma once

#include "platform/qt/QtMainThread.h"

namespace test {

/// Replaces the main thread by the Qt event loop for the lifetime of the object.
class MainLoop {
  private:
    // One for all: its queue is never destroyed.
    static platform::MainThread& thread() {
        static platform::qt::QtMainThread thread;
        return thread;
    }

    platform::ScopedService<platform::MainThread> service_{thread()};
};

} // namespace test
