#pragma once

#include "platform/PropertyList.h"
#include "platform/Service.h"

#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// Something that has happened, told to whoever observes its name.
struct Notification {
    std::string name;
    std::optional<std::string> object; ///< whom it is about
    PropertyList::Dictionary userInfo;
};

/// Tells observers of what is posted; this class those of its own process. Safe from any thread.
class NotificationCenter {
  public:
    using Handler = std::function<void(const Notification&)>;

    NotificationCenter() = default;
    virtual ~NotificationCenter();
    NotificationCenter(const NotificationCenter&) = delete;
    NotificationCenter& operator=(const NotificationCenter&) = delete;

    /// Calls @p handler for what is posted under @p name, whatever its object. The observer is not
    /// kept: once it is gone its handler is never called again, and while a handler runs it stays.
    /// One handler for each observer and name: a later one takes the place of the former. What a
    /// handler throws is logged under the name of the owner that registered it and goes no further.
    /// The handler's code has to stay loaded until it is taken out, or forgotten.
    virtual void addObserver(const std::weak_ptr<const void>& observer, const std::string& name,
                             Handler handler);
    /// No call begins after this one, but one that another thread has begun may still run.
    virtual void removeObserver(const std::weak_ptr<const void>& observer, const std::string& name);
    /// Forgets the handlers of observers that are gone, before their code goes as well.
    void forgetGoneObservers();
    /// Calls the handlers, in the order of their registration, before it returns.
    virtual void post(const Notification& notification);

  protected:
    void deliver(const Notification& notification);
    bool hasObservers(const std::string& name);
    std::vector<std::string> observedNames();

  private:
    struct Registration;
    void forgetTheGone(); ///< with the lock held
    bool isRegistered(const std::shared_ptr<const Registration>& registration);

    std::mutex mutex_;
    std::vector<std::shared_ptr<const Registration>> registrations_;
};

/// The process's own centre.
NotificationCenter& defaultNotificationCenter();
template <>
NotificationCenter* exchangeService<NotificationCenter>(NotificationCenter* service);

/// Tells observers in all of the user's programs. What one program posts arrives in the order of
/// its posts, on the main thread of each program that runs a main loop; the one that posts hears
/// it, too. Posting waits for nobody, and what nobody hears is lost. Safe from any thread.
class DistributedNotificationCenter : public NotificationCenter {};

/// Until a host installs another one: one that reaches this process alone.
DistributedNotificationCenter& distributedNotificationCenter();
template <>
DistributedNotificationCenter*
exchangeService<DistributedNotificationCenter>(DistributedNotificationCenter* service);

/// Says that an application has been started; its name is in the user information, under the key
/// hxNSApplicationName.
inline constexpr const char* kDidLaunchApplication = "NSWorkspaceDidLaunchApplicationNotification";

} // namespace platform
