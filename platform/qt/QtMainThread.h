#pragma once

#include "platform/MainThread.h"

namespace platform::qt {

/// Qt's main loop. Handlers run under the name of the owner that registered them.
class QtMainThread final : public MainThread {
  public:
    void perform(std::function<void()> work, Wait wait) override;
    std::unique_ptr<Watch> watchReadable(int fileDescriptor,
                                         std::function<void()> handler) override;
};

} // namespace platform::qt
