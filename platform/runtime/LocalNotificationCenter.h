#pragma once

#include "platform/Notifications.h"
#include "platform/runtime/ObserverList.h"

#include <memory>
#include <string>
#include <utility>

namespace platform {

/// A notification center that reaches only this process. post() calls the handlers, in the order
/// they were added, before it returns. Thread-safe.
template <class Center>
class LocalCenter : public Center {
  public:
    void addObserver(const std::weak_ptr<const void>& observer, const std::string& name,
                     NotificationCenter::Handler handler) override {
        observers_.add(observer, name, std::move(handler));
    }
    void removeObserver(const std::weak_ptr<const void>& observer,
                        const std::string& name) override {
        observers_.remove(observer, name);
    }
    void removeExpiredObservers() override { observers_.removeExpired(); }
    void post(const Notification& notification) override { observers_.deliver(notification); }

  protected:
    ObserverList& observers() { return observers_; }

  private:
    ObserverList observers_;
};

using LocalNotificationCenter = LocalCenter<NotificationCenter>;
using LocalDistributedNotificationCenter = LocalCenter<DistributedNotificationCenter>;

} // namespace platform
