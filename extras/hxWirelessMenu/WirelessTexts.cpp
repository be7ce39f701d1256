#include "extras/hxWirelessMenu/WirelessTexts.h"

#include "extras/shared/Texts.h"
#include "platform/base/Utf8.h"

#include <algorithm>
#include <cstdio>
#include <string_view>
#include <vector>

using namespace platform;

namespace extras {
namespace {

bool isBlank(const std::string& text) {
    return text.find_first_not_of(' ') == std::string::npos;
}

std::string networkOf(const WirelessAdapter& adapter) {
    return networkName(adapter.network.value_or(WirelessNetwork{}));
}

/// Whether the system says which network it is.
bool isNamed(const WirelessAdapter& adapter) {
    return adapter.network && !adapter.network->ssid.empty();
}

} // namespace

std::string networkName(const WirelessNetwork& network) {
    if (network.ssid.empty())
        return tr("Hidden network");
    return isBlank(network.name) ? tr("Unnamed network") : network.name;
}

std::string shortened(const std::string& name, std::size_t characters) {
    std::vector<std::size_t> starts; // of the characters
    for (std::size_t i = 0; i < name.size();) {
        starts.push_back(i);
        i += std::max<std::size_t>(1, utf8SequenceLength(std::string_view(name).substr(i)));
    }
    return starts.size() <= characters ? name : name.substr(0, starts[characters - 1]) + "…";
}

std::string speedText(std::uint64_t bitsPerSecond) {
    constexpr double kMega = 1e6, kGiga = 1e9;
    const auto bits = static_cast<double>(bitsPerSecond);
    const bool isFast = bits >= kGiga;
    char number[32];
    // The decimal separator is that of the locale.
    std::snprintf(number, sizeof number, isFast ? "%.1f" : "%.0f", bits / (isFast ? kGiga : kMega));
    return fill(isFast ? tr("%1 Gbit/s") : tr("%1 Mbit/s"), {number});
}

std::string strengthText(int percent) {
    return fill(tr("%1%"), {std::to_string(percent)});
}

std::string securityText(WirelessSecurity security) {
    switch (security) {
    case WirelessSecurity::None:
        return tr("security", "None");
    case WirelessSecurity::EnhancedOpen:
        return tr("Enhanced Open");
    case WirelessSecurity::WEP:
        return "WEP";
    case WirelessSecurity::WPA:
        return "WPA";
    case WirelessSecurity::WPA2:
        return "WPA2";
    case WirelessSecurity::WPA3:
        return "WPA3";
    case WirelessSecurity::Enterprise:
        break;
    }
    return tr("Enterprise");
}

std::string stateText(const WirelessAdapter& adapter) {
    switch (adapter.state) {
    case WirelessState::Off:
        return tr("Not ready");
    case WirelessState::Disconnected:
        return tr("Not connected");
    case WirelessState::Connecting:
        return isNamed(adapter) ? fill(tr("Connecting to %1…"), {networkOf(adapter)})
                                : tr("Connecting…");
    case WirelessState::Connected:
        break;
    }
    return fill(tr("Connected to %1"), {networkOf(adapter)});
}

std::string spokenState(const WirelessAdapter* adapter) {
    if (!adapter)
        return tr("no wireless adapter");
    switch (adapter->state) {
    case WirelessState::Off:
        return tr("off");
    case WirelessState::Disconnected:
        return tr("not connected");
    case WirelessState::Connecting:
        return isNamed(*adapter) ? fill(tr("connecting to %1"), {networkOf(*adapter)})
                                 : tr("connecting");
    case WirelessState::Connected:
        break;
    }
    const int strength = adapter->network ? adapter->network->strength : 0;
    return fill(tr("connected to %1, %2"),
                {networkOf(*adapter), tr("%1 percent", "%1 percent", strength)});
}

} // namespace extras
