#pragma once

#include "platform/Notifications.h"
#include "platform/qt/BusConnection.h"
#include "platform/runtime/ObserverList.h"

#include <atomic>
#include <mutex>
#include <set>
#include <string>

class QDBusConnection;
class QDBusMessage;

namespace platform::qt {

class SignalReceiver;

/// The distributed notification center over the session bus, with the signals of BusNames.h.
/// Connects at the first post or observer, and receives only notifications with observed names.
/// Handlers run in the thread of the application object, which is required for observing but
/// not for posting. addObserver waits for up to 1 s until the bus has received the subscription, so
/// that nothing posted after it is missed.
///
/// Failures are logged, and the notification is lost:
///   "notifications do not reach other programs: there is no session bus" (once),
///   "notification %@ not sent: its user information is not valid XML or exceeds 16 MiB",
///   "notification %@ not sent: %@" with the error of the bus,
///   "notification from %@ ignored: %@" for a malformed signal, or if one of its texts exceeds
///   16 MiB.
class BusNotifications final : public DistributedNotificationCenter {
  public:
    /// @p busAddress is empty for the session bus.
    explicit BusNotifications(std::string busAddress = {});
    ~BusNotifications() override;

    void addObserver(const std::weak_ptr<const void>& observer, const std::string& name,
                     Handler handler) override;
    void removeObserver(const std::weak_ptr<const void>& observer,
                        const std::string& name) override;
    void removeExpiredObservers() override;
    void post(const Notification& notification) override;

    /// Waits for up to 1 s until the bus has received everything sent here. Call this before the
    /// program exits.
    void flush();

  private:
    bool ensureSubscribed(QDBusConnection& bus);
    void subscribe(QDBusConnection& bus, const std::string& name);
    void receive(const QDBusMessage& message);

    ObserverList observers_;
    BusConnection connection_;
    std::mutex mutex_; // guards the next three members
    std::unique_ptr<SignalReceiver> receiver_;
    std::string connectionName_; ///< of the subscriptions; empty before the first connection
    std::set<std::string> subscribedNames_;
    std::atomic<bool> hasLoggedMissingBus_ = false;
};

} // namespace platform::qt
