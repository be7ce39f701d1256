#pragma once

#include "platform/Wireless.h"

#include <QByteArray>
#include <QDBusObjectPath>
#include <QMap>
#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <cstdint>
#include <map>
#include <optional>
#include <string>

namespace platform::qt {

/// Returns the security of an access point from its properties Flags, WpaFlags and RsnFlags.
WirelessSecurity securityOfFlags(std::uint32_t flags, std::uint32_t wpa, std::uint32_t rsn);

/// Returns the security of a stored connection from its property key-mgmt, empty if it has none.
/// Returns std::nullopt for an unknown value.
std::optional<WirelessSecurity> securityOfKeyManagement(const QString& keyManagement);

/// A stored connection for a wireless network.
struct StoredConnection {
    std::string ssid{};
    std::optional<WirelessSecurity> security{};
    std::uint64_t lastUse = 0; ///< seconds since 1970
};

using ObjectInterfaces = QMap<QString, QVariantMap>;            ///< properties by interface
using ManagedObjects = QMap<QDBusObjectPath, ObjectInterfaces>; ///< by path

/// What NetworkManager reports on the bus. Properties of unexpected types are treated as missing.
class NetworkManagerObjects {
  public:
    void replace(const ManagedObjects& objects);
    void add(const QString& path, const ObjectInterfaces& interfaces);
    void remove(const QString& path, const QStringList& interfaces);
    void change(const QString& path, const QString& interface, const QVariantMap& properties);
    /// Stores the settings of a connection, or forgets them if they are not those of a network
    /// that an adapter can join.
    void setSettings(const QString& path, const ObjectInterfaces& settings);

    /// Returns the paths of all stored connections, of whatever type.
    QStringList connections() const;
    WirelessStatus status() const;

    /// The objects that a request to connect needs.
    struct Target {
        QString device;      ///< empty if there is no such adapter
        QString connection;  ///< empty if the network is not known
        QString accessPoint; ///< empty if the network is not visible
    };
    Target target(const std::string& interface, const WirelessNetwork& network) const;

  private:
    QVariant value(const QString& path, const char* interface, const char* property) const;
    template <class T>
    T get(const QString& path, const char* interface, const char* property) const;
    QStringList paths(const QString& path, const char* interface, const char* property) const;

    QStringList adapters() const;
    WirelessAdapter adapter(const QString& device) const;
    std::vector<WirelessNetwork> networks(const QString& device) const;
    WirelessNetwork network(const QString& accessPoint) const;
    std::optional<WirelessNetwork> currentNetwork(const QString& device) const;
    std::vector<std::string> addresses(const QString& device) const;
    bool isKnown(const WirelessNetwork& network) const;

    std::map<QString, ObjectInterfaces> objects_;
    std::map<QString, StoredConnection> stored_;
};

} // namespace platform::qt
