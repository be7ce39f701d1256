#pragma once

#include "platform/Notifications.h"
#include "platform/base/NonCopyable.h"

#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace platform {

/// The observers of a notification center, as documented by NotificationCenter. Thread-safe.
class ObserverList : NonCopyable {
  public:
    ~ObserverList();

    void add(const std::weak_ptr<const void>& observer, const std::string& name,
             NotificationCenter::Handler handler);
    void remove(const std::weak_ptr<const void>& observer, const std::string& name);
    /// Removes the handlers of destroyed observers.
    void removeExpired();
    /// Calls the handlers of the notification's name, in the order they were added.
    void deliver(const Notification& notification);

    bool observes(const std::string& name);
    /// Returns the observed names, without duplicates.
    std::vector<std::string> names();

  private:
    struct Registration;
    void removeExpiredLocked();
    bool contains(const std::shared_ptr<const Registration>& registration);

    std::mutex mutex_;
    std::vector<std::shared_ptr<const Registration>> registrations_;
};

} // namespace platform
