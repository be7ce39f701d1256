#pragma once

#include "platform/MainThread.h"

namespace platform::qt {

/// Qt's main loop, of the thread that makes this object. Handlers run under the name of the owner
/// that registered them. What is asked for after the loop has ended is not done, and who waits for
/// it waits for the end of the process.
class QtMainThread final : public MainThread {
  public:
    QtMainThread();
    void perform(std::function<void()> work, Wait wait) override;
    std::unique_ptr<Watch> watchReadable(int fileDescriptor,
                                         std::function<void()> handler) override;

  private:
    class Queue;
    Queue* queue_; // never destroyed: a thread that outlives the loop may still refer to it
};

} // namespace platform::qt
