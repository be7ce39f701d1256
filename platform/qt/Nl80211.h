#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace platform::qt {

/// Returns the value of the first attribute of this type in a sequence of netlink attributes.
/// Returns std::nullopt if it is not found before the end or before a malformed one.
std::optional<std::string_view> netlinkAttribute(std::string_view attributes, std::uint16_t type);

struct GenericNetlinkRequest {
    std::uint16_t family = 0;
    std::uint8_t command = 0;
    std::uint16_t flags = 0; ///< in addition to NLM_F_REQUEST
};

/// Sends a generic netlink request with one attribute to the kernel. Returns the attributes of the
/// reply, or of its first part; empty if the kernel does not reply immediately or replies with an
/// error.
std::string genericNetlinkReply(const GenericNetlinkRequest& request, std::uint16_t type,
                                std::string_view value);

/// Returns the kernel's number of a generic netlink family; std::nullopt if it has none.
std::optional<std::uint16_t> genericNetlinkFamily(const std::string& name);

/// Returns the bytes of the ssid that an interface is connected to. Empty if it is not connected or
/// the driver is too old (without nl80211). Thread-safe, does not block.
std::string kernelSsid(const std::string& interface);

/// Returns the speed in bits per second at which an interface sends to its access point.
/// std::nullopt if it is not connected or the driver does not report it. Thread-safe, does not
/// block.
std::optional<std::uint64_t> kernelSpeed(const std::string& interface);

/// Returns the speed in the attributes of a station, as the reply to a request for it has them.
std::optional<std::uint64_t> speedOfStation(std::string_view attributes);

} // namespace platform::qt
