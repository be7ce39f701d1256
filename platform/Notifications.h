#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/values/Notification.h"

#include <functional>
#include <memory>
#include <string>

namespace platform {

/// Delivers each posted notification to the observers registered for its name. Thread-safe.
class NotificationCenter : NonCopyable {
  public:
    using Handler = std::function<void(const Notification&)>;

    virtual ~NotificationCenter();

    /// Calls @p handler for every notification posted under @p name, regardless of its object. The
    /// observer is held weakly: its handler is not called after it has been destroyed, and it is
    /// kept alive while its handler runs. There is one handler per observer and name; adding
    /// another replaces it. Exceptions from the handler are logged with the owner's identifier and
    /// swallowed. The handler's code must stay loaded until removeObserver or
    /// removeExpiredObservers has removed the handler.
    virtual void addObserver(const std::weak_ptr<const void>& observer, const std::string& name,
                             Handler handler) = 0;
    /// Removes a handler. No call begins after this returns, but a call that another thread has
    /// already begun may still be running.
    virtual void removeObserver(const std::weak_ptr<const void>& observer,
                                const std::string& name) = 0;
    /// Removes the handlers of destroyed observers. Hosts call it before they unload code.
    virtual void removeExpiredObservers() = 0;
    /// Posts a notification.
    virtual void post(const Notification& notification) = 0;
};

/// Returns the center for notifications within this process. Its post() calls the handlers, in the
/// order they were added, before it returns.
NotificationCenter& defaultNotificationCenter();
template <>
NotificationCenter* exchangeService<NotificationCenter>(NotificationCenter* service);

/// Delivers notifications to observers in all of the user's programs, including the poster.
/// Notifications from one program arrive in the order they were posted, on the main thread of each
/// program that runs a main loop. post() does not wait for delivery; a notification that nothing
/// observes at that moment is lost. Thread-safe.
class DistributedNotificationCenter : public NotificationCenter {};

/// Returns the distributed center. The default one reaches only this process.
DistributedNotificationCenter& distributedNotificationCenter();
template <>
DistributedNotificationCenter*
exchangeService<DistributedNotificationCenter>(DistributedNotificationCenter* service);

/// The name of the notification posted when an application has been launched. Its user information
/// contains the application's name under the key hxNSApplicationName.
inline constexpr const char* kDidLaunchApplication = "NSWorkspaceDidLaunchApplicationNotification";

} // namespace platform
