#include "extras/hxWirelessMenu/WirelessNetworks.h"

#include <algorithm>
#include <tuple>

using namespace platform;

namespace extras {
namespace {

auto rankOf(const WirelessAdapter& adapter) {
    return std::tuple(adapter.state, adapter.network ? adapter.network->strength : 0);
}

/// Which of several networks with the same ssid a connection would use.
auto preferenceFor(const WirelessAdapter& adapter, const WirelessNetwork& network) {
    const bool isExactlyCurrent =
        isCurrent(adapter, network.ssid) && adapter.network->security == network.security;
    return std::tuple(isExactlyCurrent, network.isKnown, network.strength);
}

void merge(const WirelessAdapter& adapter, WirelessNetwork& shown, const WirelessNetwork& other) {
    const int strength = std::max(shown.strength, other.strength);
    const bool isVisible = shown.isVisible || other.isVisible;
    if (preferenceFor(adapter, other) > preferenceFor(adapter, shown))
        shown = other;
    shown.strength = strength;
    shown.isVisible = isVisible;
}

} // namespace

const WirelessAdapter* mainAdapter(const WirelessStatus& status) {
    const auto found = std::ranges::max_element(status.adapters, {}, rankOf);
    return found == status.adapters.end() ? nullptr : &*found;
}

bool isCurrent(const WirelessAdapter& adapter, const std::string& ssid) {
    return adapter.network && adapter.network->ssid == ssid;
}

std::vector<WirelessNetwork> mergedNetworks(const WirelessAdapter& adapter) {
    auto all = adapter.networks;
    if (adapter.network) // not in the list if it is hidden
        all.push_back(*adapter.network);
    std::vector<WirelessNetwork> result;
    for (const WirelessNetwork& network : all) {
        const auto same = std::ranges::find(result, network.ssid, &WirelessNetwork::ssid);
        if (same != result.end())
            merge(adapter, *same, network);
        else if (!network.ssid.empty())
            result.push_back(network);
    }
    std::ranges::stable_sort(result, {}, [](const WirelessNetwork& network) {
        return std::tuple(!network.isVisible, -network.strength);
    });
    return result;
}

} // namespace extras
