#pragma once

#include "platform/base/NonCopyable.h"

#include <chrono>
#include <memory>
#include <mutex>
#include <string>

class QDBusConnection;

namespace platform::qt {

/// A connection of one's own to a bus, made when it is first asked for: the process's shared one
/// wants an application object. Any thread.
class BusConnection : NonCopyable {
  public:
    /// @p busAddress is empty for the session bus. @p purpose is part of Qt's name for it.
    BusConnection(std::string busAddress, std::string purpose);
    ~BusConnection();

    /// Connects, again when the bus has gone in the meantime. Whether that succeeded is to be
    /// asked of the answer. A bus that takes the connection and says nothing is waited for once and
    /// kPatience long; from then on there is none until it speaks.
    QDBusConnection get();

  private:
    class Attempt;
    static constexpr std::chrono::seconds kPatience{5};

    void connect();
    bool isConnecting() const;

    const std::string busAddress_;
    const std::string purpose_;
    std::mutex mutex_;
    std::string name_; // of Qt's; empty before the first time
    std::shared_ptr<Attempt> attempt_;
};

} // namespace platform::qt
