#pragma once

#include "platform/UserNotifications.h"
#include "platform/qt/BusConnection.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

class QDBusConnection;
class QDBusMessage;
class QDBusServiceWatcher;

namespace platform::qt {

class SignalReceiver;

/// Desktop notifications through the notification server on the session bus
/// (org.freedesktop.Notifications). Connects at the first post, which blocks until the bus has
/// replied whether a server is running or can be started: usually a few milliseconds, with a bus
/// that hangs up to 7 s. All calls of the server are asynchronous.
///
/// A server that exits takes its notifications along; their handlers are not called any more.
/// Notifications posted later are shown by its successor.
///
/// Failures are logged, and the notification is lost:
///   "notifications are not shown: there is no notification server" (once; post returns false),
///   "notification \"%@\" not shown: %@" with the title and the error of the server.
class BusUserNotifications final : public UserNotifications {
  public:
    /// @p busAddress is empty for the session bus.
    explicit BusUserNotifications(std::string busAddress = {});
    ~BusUserNotifications() override;

    bool post(const UserNotification& notification) override;
    void withdraw(std::string_view key) override;
    void removeExpired() override;

  private:
    struct Server;
    struct Entry;
    using EntryPointer = std::shared_ptr<Entry>;

    bool isReachable(const QDBusConnection& bus) const;
    void subscribe(QDBusConnection& bus);
    void queryServer();
    void serverReplied(const QDBusMessage& reply);
    void serverChanged(bool hadServer);
    EntryPointer find(std::string_view key) const;
    void advance(const EntryPointer& entry);
    void send(const EntryPointer& entry);
    void sent(const EntryPointer& entry, const QDBusMessage& reply);
    void erase(const EntryPointer& entry);
    void eraseClosed(const EntryPointer& entry);
    void receive(const QDBusMessage& signal);
    QDBusConnection bus() const;

    BusConnection connection_;
    std::string connectionName_; ///< of the subscriptions; empty before the first connection
    std::unique_ptr<SignalReceiver> receiver_;
    std::unique_ptr<QDBusServiceWatcher> watcher_;
    std::shared_ptr<Server> server_; ///< null until its capabilities have been requested
    std::vector<EntryPointer> entries_;
    bool hasLoggedMissingServer_ = false;
};

} // namespace platform::qt
