#pragma once

#include "platform/Wireless.h"

#include <string>
#include <vector>

/// Which adapters and networks the wireless item shows.
namespace extras {

/// Returns the adapter that the bar shows: a connected one before one that is connecting, not
/// connected or off; the strongest network first. Returns null if there is no adapter.
const platform::WirelessAdapter* mainAdapter(const platform::WirelessStatus& status);

/// Returns whether the adapter is connected or connecting to the network with this ssid.
bool isCurrent(const platform::WirelessAdapter& adapter, const std::string& ssid);

/// Returns the networks of an adapter: one per ssid, the visible ones first by strength, then the
/// known ones. If several have the same ssid, it is the current one, or else a known one, or else
/// the strongest, with the highest strength of all. Networks without an ssid are left out.
std::vector<platform::WirelessNetwork> mergedNetworks(const platform::WirelessAdapter& adapter);

} // namespace extras
