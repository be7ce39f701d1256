#pragma once

#include "platform/Wireless.h"
#include "platform/qt/BusPeer.h"
#include "platform/qt/NetworkManagerObjects.h"

#include <chrono>
#include <functional>
#include <string>

namespace platform::qt {

/// The wireless adapters as reported and controlled by NetworkManager on the system bus. Fetches
/// all objects once, then follows their signals. Main thread only.
///
/// Logged: "wireless connection %@ ignored: %@" (once) for malformed settings, and failed requests
/// as documented at each of them.
class NetworkManagerWireless : NonCopyable {
  public:
    /// They must not destroy the object.
    struct Handlers {
        /// The status may have changed.
        std::function<void()> changed;
        /// There is no status any more, or none yet. Calls of changed may follow.
        std::function<void(const std::string& reason)> unavailable;
    };

    /// @p timeLimit is how long NetworkManager may take to report its state. After that it is
    /// unavailable until its next signal or scan.
    NetworkManagerWireless(std::string busAddress, std::chrono::milliseconds timeLimit,
                           Handlers handlers);

    bool isReady() const { return phase_ == Phase::Ready; }
    /// Returns the status; meaningless unless ready.
    WirelessStatus status() const { return objects_.status(); }

    /// Searches on all adapters. Failures are not logged: NetworkManager refuses to search too
    /// often.
    void scan();
    /// The requests of Wireless, logged as "cannot connect to \"%@\": %@", "cannot disconnect %@:
    /// %@" and "cannot switch wireless networks: %@".
    bool connect(const std::string& interface, const WirelessNetwork& network);
    bool disconnect(const std::string& interface);
    bool setRadio(WirelessRadio radio);

  private:
    enum class Phase {
        Absent,
        Failed, ///< its next signal or a scan starts another query
        QueryingObjects,
        QueryingSettings,
        Ready,
    };

    void appeared();
    void query();
    void queried(const QDBusMessage& reply);
    void querySettings(const QString& connection);
    void receivedSettings(const QString& connection, const QDBusMessage& reply);
    void receive(const QDBusMessage& signal);
    void apply(const QDBusMessage& signal);
    void fail(const std::string& reason);
    void changed();
    void request(const QDBusMessage& message, std::string failure);

    const std::chrono::milliseconds timeLimit_;
    const Handlers handlers_;
    Phase phase_ = Phase::Absent;
    int pendingSettings_ = 0;
    bool hasLoggedSettings_ = false;
    NetworkManagerObjects objects_;
    BusPeer peer_;
};

} // namespace platform::qt
