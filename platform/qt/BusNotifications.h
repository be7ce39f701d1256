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

/// The distributed centre over the session bus, as BusNames.h says. It connects with the
/// first post or observer, and is woken by the names alone that somebody here observes. Handlers
/// run where the application object lives, which there must be to observe, and none to post.
///
/// Without a bus, or when the user information is nothing that XML can hold, what is posted is
/// lost; that there is no bus is logged once, the latter each time, and so is a signal that makes
/// no sense.
class BusNotifications final : public DistributedNotificationCenter {
  public:
    /// @p busAddress is empty for the session bus.
    explicit BusNotifications(std::string busAddress = {});
    ~BusNotifications() override;

    void addObserver(const std::weak_ptr<const void>& observer, const std::string& name,
                     Handler handler) override;
    void removeObserver(const std::weak_ptr<const void>& observer,
                        const std::string& name) override;
    void forgetGoneObservers() override;
    void post(const Notification& notification) override;

    /// Waits, a second at most, until the bus has all that was posted here: for a program that is
    /// about to end.
    void flush();

  private:
    bool connect(QDBusConnection& bus);
    void listen(QDBusConnection& bus, const std::string& name);
    void received(const QDBusMessage& message);

    ObserverList observers_;
    BusConnection connection_;
    std::mutex mutex_; // guards the three below
    std::unique_ptr<SignalReceiver> receiver_;
    std::string heardOn_;         // the connection, by Qt's name; empty before the first one
    std::set<std::string> heard_; // the names that the bus has been asked for
    std::atomic<bool> saidThatThereIsNoBus_ = false;
};

} // namespace platform::qt
