#include "platform/qt/NetworkManagerObjects.h"

#include "platform/qt/NetworkManagerNames.h"
#include "platform/qt/NetworkNames.h"
#include "platform/qt/Strings.h"

#include <QDBusArgument>
#include <QList>

#include <algorithm>
#include <array>
#include <tuple>
#include <utility>

namespace platform::qt {
namespace {

// NM80211ApFlags and NM80211ApSecurityFlags.
constexpr std::uint32_t kPrivacy = 0x1;
constexpr std::uint32_t kPsk = 0x100;
constexpr std::uint32_t kSae = 0x400;
constexpr std::uint32_t kEnterprise = 0x200 | 0x2000;   // 802.1X, Suite B
constexpr std::uint32_t kEnhancedOpen = 0x800 | 0x1000; // also beside an open network

// NMDeviceState.
constexpr std::uint32_t kUnmanaged = 10;
constexpr std::uint32_t kDisconnected = 30;
constexpr std::uint32_t kPrepare = 40;
constexpr std::uint32_t kActivated = 100;

constexpr const char* kNoObject = "/";

/// Returns the value if it has exactly the type T, else T().
template <class T>
T exactly(const QVariant& value) {
    return value.userType() == qMetaTypeId<T>() ? value.value<T>() : T();
}

/// The same for types that Qt leaves encoded, which have this signature.
template <class T>
T decoded(const QVariant& value, const char* signature) {
    if (value.userType() != qMetaTypeId<QDBusArgument>())
        return exactly<T>(value);
    const auto argument = value.value<QDBusArgument>();
    return argument.currentSignature() == signature ? qdbus_cast<T>(argument) : T();
}

std::string text(const QVariant& value) {
    return exactly<QString>(value).toStdString();
}

WirelessState stateOf(std::uint32_t device) {
    if (device < kDisconnected)
        return WirelessState::Off;
    if (device < kPrepare || device > kActivated)
        return WirelessState::Disconnected;
    return device == kActivated ? WirelessState::Connected : WirelessState::Connecting;
}

/// Whether settings stored for one security are used for the other, for example because the access
/// point was upgraded.
bool fits(std::optional<WirelessSecurity> stored, std::optional<WirelessSecurity> offered) {
    const auto kind = [](WirelessSecurity security) {
        if (security == WirelessSecurity::WEP || security == WirelessSecurity::Enterprise)
            return security;
        return requiresPassword(security) ? WirelessSecurity::WPA2 : WirelessSecurity::None;
    };
    return !stored || !offered || kind(*stored) == kind(*offered);
}

bool isSame(const WirelessNetwork& one, const WirelessNetwork& other) {
    return one.ssid == other.ssid && one.security == other.security;
}

} // namespace

WirelessSecurity securityOfFlags(std::uint32_t flags, std::uint32_t wpa, std::uint32_t rsn) {
    if ((wpa | rsn) & kEnterprise)
        return WirelessSecurity::Enterprise;
    if (rsn & kSae)
        return WirelessSecurity::WPA3;
    if (rsn & kPsk)
        return WirelessSecurity::WPA2;
    if (wpa & kPsk)
        return WirelessSecurity::WPA;
    if ((wpa | rsn) & kEnhancedOpen)
        return WirelessSecurity::EnhancedOpen;
    return flags & kPrivacy ? WirelessSecurity::WEP : WirelessSecurity::None;
}

std::optional<WirelessSecurity> securityOfKeyManagement(const QString& keyManagement) {
    static constexpr std::array<std::pair<const char*, WirelessSecurity>, 8> kTable{{
        {"", WirelessSecurity::None},
        {"none", WirelessSecurity::WEP},
        {"ieee8021x", WirelessSecurity::Enterprise},
        {"owe", WirelessSecurity::EnhancedOpen},
        {"wpa-psk", WirelessSecurity::WPA2},
        {"sae", WirelessSecurity::WPA3},
        {"wpa-eap", WirelessSecurity::Enterprise},
        {"wpa-eap-suite-b-192", WirelessSecurity::Enterprise},
    }};
    for (const auto& [name, security] : kTable)
        if (keyManagement == name)
            return security;
    return std::nullopt;
}

void NetworkManagerObjects::replace(const ManagedObjects& objects) {
    objects_.clear();
    stored_.clear();
    for (const auto& [path, interfaces] : objects.asKeyValueRange())
        add(path.path(), interfaces);
}

void NetworkManagerObjects::add(const QString& path, const ObjectInterfaces& interfaces) {
    objects_[path].insert(interfaces);
}

void NetworkManagerObjects::remove(const QString& path, const QStringList& interfaces) {
    const auto found = objects_.find(path);
    if (found == objects_.end())
        return;
    for (const QString& interface : interfaces)
        found->second.remove(interface);
    if (!found->second.contains(nm::kConnection))
        stored_.erase(path);
    if (found->second.isEmpty())
        objects_.erase(found);
}

void NetworkManagerObjects::change(const QString& path, const QString& interface,
                                   const QVariantMap& properties) {
    // Other objects were removed meanwhile.
    if (const auto found = objects_.find(path); found != objects_.end())
        found->second[interface].insert(properties);
}

void NetworkManagerObjects::setSettings(const QString& path, const ObjectInterfaces& settings) {
    const QVariantMap wireless = settings.value("802-11-wireless");
    const QByteArray ssid = exactly<QByteArray>(wireless.value("ssid"));
    const QString mode = exactly<QString>(wireless.value("mode"));
    stored_.erase(path);
    if (!objects_.contains(path) || ssid.isEmpty() || (!mode.isEmpty() && mode != "infrastructure"))
        return;
    const QVariantMap security = settings.value("802-11-wireless-security");
    const QVariantMap connection = settings.value("connection");
    stored_[path] = {.ssid = ssid.toStdString(),
                     .security =
                         securityOfKeyManagement(exactly<QString>(security.value("key-mgmt"))),
                     .lastUse = exactly<qulonglong>(connection.value("timestamp"))};
}

QStringList NetworkManagerObjects::connections() const {
    QStringList result;
    for (const auto& [path, interfaces] : objects_)
        if (interfaces.contains(nm::kConnection))
            result << path;
    return result;
}

QVariant NetworkManagerObjects::value(const QString& path, const char* interface,
                                      const char* property) const {
    const auto found = objects_.find(path);
    return found == objects_.end() ? QVariant() : found->second.value(interface).value(property);
}

template <class T>
T NetworkManagerObjects::get(const QString& path, const char* interface,
                             const char* property) const {
    return exactly<T>(value(path, interface, property));
}

/// Returns the path or the paths in a property, without the path that stands for no object.
QStringList NetworkManagerObjects::paths(const QString& path, const char* interface,
                                         const char* property) const {
    const QVariant variant = value(path, interface, property);
    auto list = decoded<QList<QDBusObjectPath>>(variant, "ao");
    list << exactly<QDBusObjectPath>(variant);
    QStringList result;
    for (const QDBusObjectPath& one : list)
        if (!one.path().isEmpty() && one.path() != kNoObject)
            result << one.path();
    return result;
}

QStringList NetworkManagerObjects::adapters() const {
    QStringList result;
    for (const auto& [path, interfaces] : objects_)
        if (interfaces.contains(nm::kWireless) &&
            get<uint>(path, nm::kDevice, "State") != kUnmanaged)
            result << path;
    return result;
}

WirelessStatus NetworkManagerObjects::status() const {
    const auto isOn = [this](const char* property) {
        return get<bool>(nm::kManagerPath, nm::kManager, property);
    };
    WirelessStatus status{.isReady = true, .canChange = true};
    status.isRadioOn = isOn("WirelessEnabled") && isOn("WirelessHardwareEnabled");
    for (const QString& device : adapters()) {
        WirelessAdapter one = adapter(device);
        if (!status.isRadioOn)
            one = {.interface = one.interface, .hardwareAddress = one.hardwareAddress};
        status.adapters.push_back(std::move(one));
    }
    std::ranges::sort(status.adapters, {}, &WirelessAdapter::interface);
    return status;
}

WirelessAdapter NetworkManagerObjects::adapter(const QString& device) const {
    WirelessAdapter result{
        .interface = text(value(device, nm::kDevice, "Interface")),
        .hardwareAddress = text(value(device, nm::kWireless, "HwAddress")),
        .state = stateOf(get<uint>(device, nm::kDevice, "State")),
        .networks = networks(device),
    };
    if (result.state == WirelessState::Off || result.state == WirelessState::Disconnected)
        return result;
    result.network = currentNetwork(device);
    if (result.state == WirelessState::Connecting)
        return result;
    result.addresses = addresses(device);
    if (const uint kilobits = get<uint>(device, nm::kWireless, "Bitrate"))
        result.speed = std::uint64_t{kilobits} * 1000;
    return result;
}

WirelessNetwork NetworkManagerObjects::network(const QString& accessPoint) const {
    const auto flags = [&](const char* property) {
        return get<uint>(accessPoint, nm::kAccessPoint, property);
    };
    const auto ssid = get<QByteArray>(accessPoint, nm::kAccessPoint, "Ssid").toStdString();
    WirelessNetwork network{
        .ssid = ssid,
        .name = nameOfSsid(ssid),
        .security = securityOfFlags(flags("Flags"), flags("WpaFlags"), flags("RsnFlags")),
        .strength = std::min<int>(get<uchar>(accessPoint, nm::kAccessPoint, "Strength"), 100),
        .isVisible = true};
    network.isKnown = isKnown(network);
    return network;
}

bool NetworkManagerObjects::isKnown(const WirelessNetwork& network) const {
    return std::ranges::any_of(stored_, [&](const auto& one) {
        return one.second.ssid == network.ssid && fits(one.second.security, network.security);
    });
}

std::vector<WirelessNetwork> NetworkManagerObjects::networks(const QString& device) const {
    std::vector<WirelessNetwork> result;
    for (const QString& path : paths(device, nm::kWireless, "AccessPoints")) {
        const WirelessNetwork one = network(path);
        const auto same =
            std::ranges::find_if(result, [&](const auto& other) { return isSame(one, other); });
        if (same != result.end())
            same->strength = std::max(same->strength, one.strength);
        else if (!one.ssid.empty())
            result.push_back(one);
    }
    const auto visible = static_cast<std::ptrdiff_t>(result.size());
    for (const auto& [path, stored] : stored_) {
        const bool isListed = std::ranges::any_of(result, [&stored = stored](const auto& other) {
            return other.ssid == stored.ssid && fits(stored.security, other.security);
        });
        if (!isListed)
            result.push_back({.ssid = stored.ssid,
                              .name = nameOfSsid(stored.ssid),
                              .security = stored.security,
                              .isKnown = true});
    }
    const auto byStrength = [](const WirelessNetwork& network) {
        return std::tuple(-network.strength, network.name, network.security);
    };
    std::sort(result.begin(), result.begin() + visible, [&](const auto& one, const auto& other) {
        return byStrength(one) < byStrength(other);
    });
    std::sort(result.begin() + visible, result.end(),
              [](const auto& one, const auto& other) { return one.name < other.name; });
    return result;
}

std::optional<WirelessNetwork> NetworkManagerObjects::currentNetwork(const QString& device) const {
    const QString active = paths(device, nm::kDevice, "ActiveConnection").value(0);
    for (const QString& path : paths(device, nm::kWireless, "ActiveAccessPoint") +
                                   paths(active, nm::kActive, "SpecificObject"))
        if (const WirelessNetwork found = network(path); !found.ssid.empty())
            return found;
    const QString connection = paths(active, nm::kActive, "Connection").value(0);
    WirelessNetwork hidden{.isVisible = true};
    if (const auto found = stored_.find(connection); found != stored_.end()) {
        hidden.ssid = found->second.ssid;
        hidden.name = nameOfSsid(hidden.ssid);
        hidden.security = found->second.security;
        hidden.isKnown = true;
    }
    return hidden;
}

std::vector<std::string> NetworkManagerObjects::addresses(const QString& device) const {
    static constexpr std::array<std::pair<const char*, const char*>, 2> kFamilies{
        {{"Ip4Config", nm::kIp4}, {"Ip6Config", nm::kIp6}}};
    std::vector<std::string> result;
    for (const auto& [property, interface] : kFamilies)
        for (const QString& path : paths(device, nm::kDevice, property))
            for (const QVariantMap& one :
                 decoded<QList<QVariantMap>>(value(path, interface, "AddressData"), "aa{sv}"))
                if (const std::string address = text(one.value("address")); !address.empty())
                    result.push_back(address);
    return result;
}

NetworkManagerObjects::Target NetworkManagerObjects::target(const std::string& interface,
                                                            const WirelessNetwork& network) const {
    Target target;
    for (const QString& device : adapters())
        if (text(value(device, nm::kDevice, "Interface")) == interface)
            target.device = device;
    int strength = -1;
    for (const QString& path : paths(target.device, nm::kWireless, "AccessPoints"))
        if (const WirelessNetwork one = this->network(path);
            isSame(one, network) && one.strength > strength) {
            target.accessPoint = path;
            strength = one.strength;
        }
    const QStringList available = paths(target.device, nm::kDevice, "AvailableConnections");
    std::pair<bool, std::uint64_t> best;
    for (const auto& [path, stored] : stored_) {
        const std::pair rank(available.contains(path), stored.lastUse);
        if (stored.ssid != network.ssid || !fits(stored.security, network.security))
            continue;
        if (target.connection.isEmpty() || rank > best) {
            target.connection = path;
            best = rank;
        }
    }
    return target;
}

} // namespace platform::qt
