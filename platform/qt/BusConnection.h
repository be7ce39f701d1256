#pragma once

#include "platform/base/NonCopyable.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

class QDBusConnection;

namespace platform::qt {

/// A private connection to a bus, opened on first use. Unlike Qt's shared one, it needs no
/// application object. Thread-safe.
class BusConnection : NonCopyable {
  public:
    /// @p busAddress is empty for the session bus. @p purpose becomes part of Qt's name
    /// for the connection.
    BusConnection(std::string busAddress, std::string purpose);
    ~BusConnection();

    /// Returns the connection, and opens it if necessary, for example after the bus has
    /// restarted. If that fails, the result is disconnected. If the bus accepts the connection
    /// but does not reply, blocks for kTimeout; until it replies, later calls return a
    /// disconnected result without blocking.
    QDBusConnection get();

  private:
    class Attempt;
    static constexpr std::chrono::seconds kTimeout{5};

    void connect();
    bool isConnecting() const;

    const std::string busAddress_;
    const std::string purpose_;
    std::mutex mutex_;
    std::string name_; ///< Qt's name for the connection; empty before the first use
    std::shared_ptr<Attempt> attempt_;
};

} // namespace platform::qt
