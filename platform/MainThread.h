#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"

#include <functional>
#include <memory>

namespace platform {

/// The program's main loop and the thread that runs it.
class MainThread : NonCopyable {
  public:
    enum class Wait { No, UntilDone };

    virtual ~MainThread();

    /// Queues @p work for the main thread. Calls run in the order they were queued. With
    /// Wait::UntilDone, blocks until @p work has run; on the main thread, runs it immediately.
    /// Exceptions from @p work are logged with the owner's identifier and swallowed. Thread-safe.
    virtual void perform(std::function<void()> work, Wait wait) = 0;

    /// Calls @p handler on the main thread whenever @p fileDescriptor is readable; the handler is
    /// expected to read from it. The caller keeps ownership of the descriptor and must keep it open
    /// while the watch exists. The handler may destroy its own watch. Exceptions from it are logged
    /// with the owner's identifier and swallowed. Main thread only.
    virtual std::unique_ptr<Watch> watchReadable(int fileDescriptor,
                                                 std::function<void()> handler) = 0;
};

/// Returns the host's main thread. Aborts if the host has not installed one.
MainThread& mainThread();
template <>
MainThread* exchangeService<MainThread>(MainThread* service);

} // namespace platform
