#pragma once

#include "platform/MainThread.h"

namespace platform::qt {

/// The Qt event loop of the thread that creates the object. Handlers run under the identifier of
/// the owner that registered them (see runGuarded). Work queued after the loop has ended does not
/// run; waiting for it blocks until the process exits.
class QtMainThread final : public MainThread {
  public:
    QtMainThread();
    void perform(std::function<void()> work, Wait wait) override;
    std::unique_ptr<Watch> watchReadable(int fileDescriptor,
                                         std::function<void()> handler) override;

  private:
    class Queue;
    Queue* queue_; // never destroyed: a thread that outlives the loop may still use it
};

} // namespace platform::qt
