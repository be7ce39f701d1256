#pragma once

#include "platform/Wireless.h"

#include <optional>
#include <string>

namespace extras {

/// A connection that the user has requested, and whether it failed. Connecting fails if the adapter
/// stops trying without being connected to the network.
class ConnectionAttempt {
  public:
    /// Starts an attempt, which replaces any other one.
    void start(const std::string& interface, const std::string& ssid);
    /// Ends the attempt: it could not even be started.
    void fail();
    /// Forgets the attempt, for example because the user has stopped it.
    void forget() { *this = {}; }
    /// Follows a change of the status.
    void update(const platform::WirelessStatus& status);

    /// Returns whether the last attempt was to this network and has failed.
    bool hasFailed(const std::string& interface, const std::string& ssid) const;

  private:
    enum class Phase { None, Requested, Connecting, Failed };

    Phase phase_ = Phase::None;
    std::string interface_;
    std::string ssid_;
};

} // namespace extras
