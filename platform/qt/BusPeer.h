#pragma once

#include "platform/base/NonCopyable.h"

#include <QString>

#include <chrono>
#include <functional>
#include <memory>
#include <string>

class QDBusConnection;
class QDBusMessage;

namespace platform::qt {

class SignalReceiver;

/// A service on the system bus that may start and exit at any time. Never blocks: the connection
/// is opened on another thread, and calls are asynchronous. Does not start the service. The
/// connection is private, and closed with the object. Main thread only.
class BusPeer : NonCopyable {
  public:
    /// Called on the main thread. They must not destroy the BusPeer.
    struct Handlers {
        /// The service is running, or was replaced by another process. Calls made before are
        /// dropped, subscriptions have ended.
        std::function<void()> appeared;
        /// The service is not running, has exited, or the bus cannot be reached, now or for ever.
        /// Calls made before are dropped. @p reason is human-readable.
        std::function<void(const std::string& reason)> unavailable;
        /// A subscribed signal.
        std::function<void(const QDBusMessage& signal)> received;
    };

    /// Starts connecting. @p busAddress is empty for the system bus, @p title is the service's
    /// human-readable name, @p busTimeLimit is for each reply of the bus itself.
    BusPeer(std::string busAddress, QString name, std::string title, Handlers handlers,
            std::chrono::milliseconds busTimeLimit = std::chrono::seconds(5));
    ~BusPeer();

    /// Subscribes to a signal of the running service on all of its objects, or only those with
    /// this first argument.
    void subscribe(const char* interface, const char* member, const QString& firstArgument = {});
    /// Calls the running service. @p onReply gets the reply or an error.
    void call(const QDBusMessage& message, std::chrono::milliseconds timeLimit,
              std::function<void(const QDBusMessage& reply)> onReply);

  private:
    void connect();
    void connected();
    void setOwner(const QString& owner);
    void receiveFromBus(const QDBusMessage& signal);

    const std::string busAddress_;
    const QString name_;
    const std::string title_;
    const Handlers handlers_;
    const std::chrono::milliseconds busTimeLimit_;
    QString connectionName_;
    std::unique_ptr<QDBusConnection> bus_; ///< null until connected
    std::unique_ptr<SignalReceiver> busReceiver_;
    std::unique_ptr<SignalReceiver> receiver_; ///< null unless the service is running
    QString owner_;                            ///< the service's unique name
    std::shared_ptr<BusPeer*> self_;           ///< expires with the object
    std::shared_ptr<int> epoch_;               ///< expires when calls are dropped
};

/// Returns why a reply is unusable, human-readable.
std::string failureOf(const QDBusMessage& reply);

} // namespace platform::qt
