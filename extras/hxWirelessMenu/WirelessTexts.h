#pragma once

#include "platform/Wireless.h"

#include <cstdint>
#include <string>

/// User-visible texts of the wireless item.
namespace extras {

/// Returns the name of a network, also if it is hidden or its name is blank.
std::string networkName(const platform::WirelessNetwork& network);
/// Returns @p name with at most this many characters, the last one an ellipsis if it was longer.
std::string shortened(const std::string& name, std::size_t characters);

/// Returns a speed such as "433 Mbit/s".
std::string speedText(std::uint64_t bitsPerSecond);
std::string strengthText(int percent); ///< such as "70%"
std::string securityText(platform::WirelessSecurity security);

/// Returns the state of an adapter as a sentence, such as "Connected to Home".
std::string stateText(const platform::WirelessAdapter& adapter);
/// Returns what the bar's icon shows, for screen readers. @p adapter is null without one.
std::string spokenState(const platform::WirelessAdapter* adapter);

} // namespace extras
