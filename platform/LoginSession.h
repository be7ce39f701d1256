#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"

#include <functional>
#include <memory>

namespace platform {

enum class LoginSessionEvent {
    Locked,
    Unlocked,
    Activated,   ///< the user has switched to this session
    Deactivated, ///< the user has switched to another session of the machine
    WillSleep,   ///< the machine sleeps when all handlers have returned, or a few seconds later
    DidWake,
};

/// The user's login session. Connects to the system with the first observer and disconnects after
/// the last one. Main thread only; needs a running main loop.
class LoginSession : NonCopyable {
  public:
    virtual ~LoginSession();

    /// Returns whether the screen is locked. False until the system has replied to the first
    /// observer, and without observers. If the desktop locks the screen without telling the
    /// system, this is not noticed.
    virtual bool isLocked() const = 0;
    /// Returns whether the session is the one that its seat shows. True until the system has
    /// replied to the first observer, and without observers.
    virtual bool isActive() const = 0;

    /// Calls @p handler on the main thread at each event; also once with Locked or Deactivated if
    /// the system's first reply says so. Exceptions from it are logged with the owner's identifier
    /// and swallowed. It may destroy its own watch. If the system does not report events, this is
    /// logged once, and the handler is not called.
    [[nodiscard]] virtual std::unique_ptr<Watch>
    observe(std::function<void(LoginSessionEvent)> handler) = 0;
};

/// Returns the host's login session. The default is never locked and reports no events.
LoginSession& loginSession();
template <>
LoginSession* exchangeService<LoginSession>(LoginSession* service);

} // namespace platform
