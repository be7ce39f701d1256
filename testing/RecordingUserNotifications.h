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
        std::erase_if(shown, [](const auto& one) { return one.handler && one.observer.expired(); });
    }
    /// Chooses an action, as a user does. Returns whether a notification with this key offers it.
    bool choose(std::string_view key, const std::string& action) {
        for (const auto& [itsKey, title, body, icon, actions, weak, handler] : std::vector(shown))
            for (const auto& [identifier, label] : actions)
                if (const auto observer = weak.lock(); itsKey == key && identifier == action) {
                    if (observer && handler)
                        handler(action);
                    return true;
                }
        return false;
    }

  private:
    platform::ScopedService<platform::UserNotifications> service_{*this};
};

} // namespace halvextest
