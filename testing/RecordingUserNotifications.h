#pragma once

#include "platform/UserNotifications.h"

#include <string>
#include <string_view>
#include <vector>

namespace halvextest {

/// Shows notifications until they are withdrawn. Keys are not separated by owner.
class RecordingUserNotifications final : public platform::UserNotifications {
  public:
    std::vector<platform::UserNotification> shown; ///< in the order they were posted
    bool shows = true;                             ///< the result of post

    bool post(const platform::UserNotification& notification) override {
        withdraw(notification.key);
        if (shows)
            shown.push_back(notification);
        return shows;
    }
    void withdraw(std::string_view key) override {
        std::erase_if(shown, [&](const auto& other) { return !key.empty() && other.key == key; });
    }
    void removeExpired() override {
        std::erase_if(shown, [](const auto& one) {
            return (one.handler || one.eventHandler) && one.observer.expired();
        });
    }
    /// Chooses an action, as a user does. Returns whether a notification with this key offers it.
    bool choose(std::string_view key, const std::string& action) {
        for (const auto& one : std::vector(shown))
            for (const auto& [identifier, label] : one.actions)
                if (const auto observer = one.observer.lock();
                    one.key == key && identifier == action) {
                    if (observer && one.handler)
                        one.handler(action);
                    return true;
                }
        return false;
    }
    /// Reports an event of the notifications whose titles are @p title, as the desktop does.
    void report(std::string_view title, platform::UserNotificationEvent event) {
        const auto notifications = shown;
        if (event == platform::UserNotificationEvent::Closed)
            std::erase_if(shown, [&](const auto& one) { return one.title == title; });
        for (const auto& one : notifications)
            if (const auto observer = one.observer.lock();
                observer && one.eventHandler && one.title == title)
                one.eventHandler(event);
    }

  private:
    platform::ScopedService<platform::UserNotifications> service_{*this};
};

} // namespace halvextest
