#include "extras/hxWirelessMenu/ConnectionAttempt.h"

#include "extras/hxWirelessMenu/WirelessNetworks.h"

#include <algorithm>

using namespace platform;

namespace extras {

void ConnectionAttempt::start(const std::string& interface, const std::string& ssid) {
    phase_ = Phase::Requested;
    interface_ = interface;
    ssid_ = ssid;
}

void ConnectionAttempt::fail() {
    phase_ = Phase::Failed;
}

void ConnectionAttempt::update(const WirelessStatus& status) {
    if (phase_ == Phase::None)
        return;
    const auto adapter =
        std::ranges::find(status.adapters, interface_, &WirelessAdapter::interface);
    if (adapter == status.adapters.end() || adapter->state == WirelessState::Off)
        return forget();
    const bool isTarget = isCurrent(*adapter, ssid_);
    if (isTarget && adapter->state == WirelessState::Connected)
        return forget();
    if (isTarget && adapter->state == WirelessState::Connecting)
        phase_ = Phase::Connecting;
    else if (phase_ == Phase::Connecting)
        phase_ = Phase::Failed;
}

bool ConnectionAttempt::hasFailed(const std::string& interface, const std::string& ssid) const {
    return phase_ == Phase::Failed && interface == interface_ && ssid == ssid_;
}

} // namespace extras
