#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"

#include <functional>
#include <memory>

namespace platform {

/// The thread that runs the program's main loop, and that loop.
class MainThread : NonCopyable {
  public:
    enum class Wait { No, UntilDone };

    virtual ~MainThread();

    /// Runs @p work on the main thread, in the order of the calls. With UntilDone the caller waits;
    /// on the main thread itself it then runs at once. What it throws is logged under the owner's
    /// name and goes no further. Safe from any thread.
    virtual void perform(std::function<void()> work, Wait wait) = 0;

    /// Calls @p handler on the main thread whenever @p fileDescriptor has something to read, which
    /// the handler should then read. The descriptor stays the caller's and outlives the watch. The
    /// handler may destroy its own watch. What a handler throws is logged and goes no further.
    /// Main thread.
    virtual std::unique_ptr<Watch> watchReadable(int fileDescriptor,
                                                 std::function<void()> handler) = 0;
};

/// Installed by a host; there is none before, and who asks ends the program.
MainThread& mainThread();
template <>
MainThread* exchangeService<MainThread>(MainThread* service);

} // namespace platform
