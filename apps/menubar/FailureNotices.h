#pragma once

#include <QObject>

#include <memory>

namespace platform {
struct UserNotification;
}

namespace apps {

class ItemRegistry;

/// Tells the user, with a notification of the desktop, that an item was turned off because it ended
/// the previous bar, and offers to turn it on again. Also tells that the bar started with its own
/// items only. Main thread only.
class FailureNotices final : public QObject {
  public:
    /// Create the object before registry.start().
    explicit FailureNotices(ItemRegistry& registry);

  private:
    void turnOn(const std::string& identifier);
    void postLater(platform::UserNotification notification);

    ItemRegistry& registry_;
    // Observes the notifications: their handlers are not called after the destruction.
    const std::shared_ptr<FailureNotices*> self_ = std::make_shared<FailureNotices*>(this);
};

} // namespace apps
