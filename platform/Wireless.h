#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform {

/// The strongest method that a network offers.
enum class WirelessSecurity {
    None,
    EnhancedOpen, ///< encrypted, without a password
    WEP,
    WPA,
    WPA2,
    WPA3,
    Enterprise, ///< each user has an account
};

/// Returns whether a network asks for a password or an account. Menus show a lock beside it.
constexpr bool requiresPassword(WirelessSecurity security) {
    return security != WirelessSecurity::None && security != WirelessSecurity::EnhancedOpen;
}

/// A network as seen by one adapter. All access points with the same name and security are one
/// network.
struct WirelessNetwork {
    std::string ssid{}; ///< identifies the network; 1 to 32 bytes of any value
    std::string name{}; ///< the user-visible ssid; what is malformed or invisible is replaced
    /// std::nullopt if unknown
    std::optional<WirelessSecurity> security{};
    int strength = 0;       ///< of the signal, in percent
    bool isVisible = false; ///< in range, or connected
    bool isKnown = false;   ///< the user has stored its settings

    friend bool operator==(const WirelessNetwork&, const WirelessNetwork&) = default;
};

enum class WirelessState {
    Off, ///< switched off or not ready, for example without its firmware
    Disconnected,
    Connecting, ///< includes waiting for the user's password
    Connected,
};

struct WirelessAdapter {
    std::string interface {};             ///< identifies the adapter, such as "wlan0"
    std::string hardwareAddress{};        ///< such as "11:22:33:44:55:66"; empty if unknown
    std::vector<std::string> addresses{}; ///< numeric IPv4 and IPv6 addresses, IPv4 first
    WirelessState state = WirelessState::Off;
    /// The network that the adapter is connected or connecting to. Its ssid is empty if the
    /// system does not say which one it is.
    std::optional<WirelessNetwork> network{};
    std::optional<std::uint64_t> speed{}; ///< bits per second; std::nullopt if unknown
    /// The visible networks, strongest first, then the other known ones by name.
    std::vector<WirelessNetwork> networks{};

    friend bool operator==(const WirelessAdapter&, const WirelessAdapter&) = default;
};

struct WirelessStatus {
    bool isReady = false;                    ///< false until the system has been queried
    bool canChange = false;                  ///< whether the system takes requests from users
    bool isRadioOn = false;                  ///< false also if a switch on the machine turns it off
    std::vector<WirelessAdapter> adapters{}; ///< sorted by interface

    friend bool operator==(const WirelessStatus&, const WirelessStatus&) = default;
};

enum class WirelessRadio { Off, On };

/// The wireless network adapters of the machine. Connects to the system with the first observer
/// and disconnects after the last one. Main thread only; needs a running main loop.
class Wireless : NonCopyable {
  public:
    virtual ~Wireless();

    /// Returns the status that the observers were last notified of. Without observers it is not
    /// ready and has no adapters. Does not block.
    virtual const WirelessStatus& status() const = 0;

    /// Calls @p handler on the main thread after the status has changed, first when it becomes
    /// ready, unless it already is. A burst of changes is one call. Exceptions from @p handler are
    /// logged with the owner's identifier and swallowed. It may destroy its own watch.
    [[nodiscard]] virtual std::unique_ptr<Watch> observe(std::function<void()> handler) = 0;

    // Requests. They do not block; their results are changes of the status. They return false, and
    // log the reason, if the request is impossible. If it fails later, the reason is logged.

    /// Searches for networks. Also possible if the status cannot be changed, and then reads it
    /// again. Does not fail. Call it when the user opens a list of networks.
    virtual void scan() = 0;
    /// Connects the adapter @p interface to the known or visible network with this ssid and
    /// security. The desktop asks the user for the password if it needs one.
    virtual bool connect(const std::string& interface, const WirelessNetwork& network) = 0;
    /// Disconnects the adapter until the user connects it again.
    virtual bool disconnect(const std::string& interface) = 0;
    /// Switches all adapters on or off.
    virtual bool setRadio(WirelessRadio radio) = 0;
};

/// Returns the host's wireless adapters. The default has none.
Wireless& wireless();
template <>
Wireless* exchangeService<Wireless>(Wireless* service);

} // namespace platform
