#include "platform/UserNotifications.h"

#include "platform/Log.h"
#include "platform/base/ServiceSlot.h"

#include <utility>

namespace platform {
namespace {

class NoUserNotifications final : public UserNotifications {
  public:
    bool post(const UserNotification& notification) override {
        if (!std::exchange(hasLogged_, true))
            logLine("notification \"%@\" not shown: this program cannot show notifications",
                    notification.title);
        return false;
    }
    void withdraw(std::string_view) override {}
    void removeExpired() override {}

  private:
    bool hasLogged_ = false;
};

UserNotifications& noUserNotifications() {
    static NoUserNotifications service;
    return service;
}

constinit ServiceSlot<UserNotifications> slot{"UserNotifications", noUserNotifications};

} // namespace

UserNotifications::~UserNotifications() = default;

UserNotifications& userNotifications() {
    return slot.get();
}

template <>
UserNotifications* exchangeService<UserNotifications>(UserNotifications* service) {
    return slot.exchange(service);
}

} // namespace platform
