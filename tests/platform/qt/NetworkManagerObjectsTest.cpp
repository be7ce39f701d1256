#include "platform/qt/NetworkManagerObjects.h"

#include "platform/qt/NetworkNames.h"

#include <gmock/gmock.h>

#include <tuple>

using namespace platform;
using platform::qt::NetworkManagerObjects;
using platform::qt::ObjectInterfaces;
using testing::ElementsAre;

namespace {

using Security = WirelessSecurity;

TEST(NetworkManagerSecurity, FollowsFromTheFlagsOfTheAccessPoint) {
    struct Row {
        std::uint32_t flags, wpa, rsn;
        Security security;
    };
    for (const auto& [flags, wpa, rsn, security] :
         std::vector<Row>{{0, 0, 0, Security::None},
                          {1, 0, 0, Security::WEP},
                          {1, 0x104, 0, Security::WPA},
                          {1, 0x104, 0x188, Security::WPA2},
                          {1, 0, 0x588, Security::WPA3},
                          {1, 0, 0x488, Security::WPA3},
                          {1, 0, 0x288, Security::Enterprise},
                          {1, 0x204, 0, Security::Enterprise},
                          {1, 0, 0x2088, Security::Enterprise},
                          {1, 0, 0x888, Security::EnhancedOpen},
                          {0, 0, 0x1000, Security::EnhancedOpen}})
        EXPECT_EQ(platform::qt::securityOfFlags(flags, wpa, rsn), security)
            << flags << ' ' << wpa << ' ' << rsn;
    for (const auto& [text, security] :
         std::vector<std::pair<const char*, std::optional<Security>>>{
             {"", Security::None}, {"none", Security::WEP}, {"sae", Security::WPA3}, {"x", {}}})
        EXPECT_EQ(platform::qt::securityOfKeyManagement(text), security) << text;
}

TEST(NetworkNames, ShowNoControlCharactersOrMalformedBytes) {
    for (const auto& [ssid, name] : std::vector<std::pair<std::string, std::string>>{
             {"Käse 5", "Käse 5"},
             {"a\nb\x7F", "a\uFFFDb\uFFFD"},
             {"\xFFz\xC3", "\uFFFDz\uFFFD"},
             {std::string("\0x", 2), "\uFFFDx"},
             {"\u202Ea\u2069\u0085", "\uFFFDa\uFFFD\uFFFD"},
             {" ~\u00A0\u2010\u2030שלום", " ~\u00A0\u2010\u2030שלום"}})
        EXPECT_EQ(platform::qt::nameOfSsid(ssid), name);
}

const QString kBase = "org.freedesktop.NetworkManager";
const QString kRoot = "/org/freedesktop/NetworkManager";

QVariant path(const QString& object) {
    return QVariant::fromValue(QDBusObjectPath(object));
}
QVariant paths(const QStringList& objects) {
    QList<QDBusObjectPath> list;
    for (const QString& object : objects)
        list << QDBusObjectPath(object);
    return QVariant::fromValue(list);
}
QVariant addresses(const QStringList& list) {
    QList<QVariantMap> data;
    for (const QString& address : list)
        data << QVariantMap{{"address", address}, {"prefix", 24U}};
    return QVariant::fromValue(data);
}

class NetworkManagerObjectsTest : public testing::Test {
  protected:
    NetworkManagerObjectsTest() {
        objects.add(kRoot,
                    {{kBase, {{"WirelessEnabled", true}, {"WirelessHardwareEnabled", true}}}});
        objects.add("/d", {{kBase + ".Device",
                            {{"Interface", "wlan0"},
                             {"State", 100U},
                             {"ActiveConnection", path("/active")},
                             {"AvailableConnections", paths({"/old"})},
                             {"Ip4Config", path("/ip4")},
                             {"Ip6Config", path("/ip6")}}},
                           {kBase + ".Device.Wireless",
                            {{"HwAddress", "00:11"},
                             {"Bitrate", 54000U},
                             {"AccessPoints", paths({"/weak", "/strong", "/gone"})},
                             {"ActiveAccessPoint", path("/")}}}});
        objects.add("/active", {{kBase + ".Connection.Active",
                                 {{"SpecificObject", path("/")}, {"Connection", path("/new")}}}});
        objects.add("/ip4", {{kBase + ".IP4Config", {{"AddressData", addresses({"10.0.0.2"})}}}});
        objects.add("/ip6", {{kBase + ".IP6Config", {{"AddressData", addresses({"fd00::2"})}}}});
        addAccessPoint("/weak", 30);
        addAccessPoint("/strong", 70);
        store("/old", "Home", "wpa-psk", 5);
        store("/new", "Home", "sae", 9);
    }
    void addAccessPoint(const QString& object, uchar strength) {
        objects.add(object, {{kBase + ".AccessPoint",
                              {{"Ssid", QByteArray("Home")},
                               {"RsnFlags", 0x100U},
                               {"Strength", QVariant::fromValue(strength)}}}});
    }
    void store(const QString& object, const QByteArray& ssid, const QString& keyManagement,
               qulonglong lastUse, const QString& mode = {}) {
        objects.add(object, {{kBase + ".Settings.Connection", {}}});
        objects.setSettings(object, {{"connection", {{"timestamp", lastUse}}},
                                     {"802-11-wireless", {{"ssid", ssid}, {"mode", mode}}},
                                     {"802-11-wireless-security", {{"key-mgmt", keyManagement}}}});
    }
    void set(const QString& interface, const QString& property, const QVariant& value) {
        objects.change(interface == "" ? kRoot : "/d", kBase + interface, {{property, value}});
    }
    WirelessAdapter adapter() const {
        const auto status = objects.status();
        EXPECT_EQ(status.adapters.size(), 1U);
        return status.adapters.empty() ? WirelessAdapter() : status.adapters.front();
    }

    NetworkManagerObjects objects;
};

TEST_F(NetworkManagerObjectsTest, DescribeTheConnection) {
    const WirelessAdapter hidden = adapter();
    EXPECT_THAT(hidden.addresses, ElementsAre("10.0.0.2", "fd00::2"));
    EXPECT_EQ(hidden.speed, 54'000'000U);
    EXPECT_EQ(hidden.hardwareAddress, "00:11");
    EXPECT_EQ(hidden.network->ssid, "Home") << "known from its settings";
    EXPECT_EQ(hidden.network->security, Security::WPA3);
    set(".Device.Wireless", "ActiveAccessPoint", path("/weak"));
    EXPECT_EQ(adapter().network->strength, 30);
    set(".Device.Wireless", "Bitrate", 0U);
    EXPECT_EQ(adapter().speed, std::nullopt);
}

TEST_F(NetworkManagerObjectsTest, StatesFollowTheDeviceAndTheSwitches) {
    struct Row {
        const char* property;
        QVariant value;
        WirelessState state;
        bool hasAddresses, hasNetwork;
    };
    using State = WirelessState;
    for (const auto& [property, value, state, hasAddresses, hasNetwork] :
         std::vector<Row>{{"State", 20U, State::Off, false, false},
                          {"State", 30U, State::Disconnected, false, false},
                          {"State", 40U, State::Connecting, false, true},
                          {"State", 90U, State::Connecting, false, true},
                          {"State", 100U, State::Connected, true, true},
                          {"State", 110U, State::Disconnected, false, false},
                          {"State", "garbage", State::Off, false, false},
                          {"State", 100U, State::Connected, true, true},
                          {"WirelessHardwareEnabled", false, State::Off, false, false}}) {
        set(QString(property) == "State" ? ".Device" : "", property, value);
        EXPECT_EQ(adapter().state, state) << value.toString().toStdString();
        EXPECT_EQ(!adapter().addresses.empty(), hasAddresses);
        EXPECT_EQ(adapter().network.has_value(), hasNetwork);
    }
    set(".Device", "State", 10U);
    EXPECT_TRUE(objects.status().adapters.empty()) << "not managed";
}

TEST_F(NetworkManagerObjectsTest, TargetsTheBestConnectionAndAccessPoint) {
    const auto target = [this](const WirelessNetwork& network) {
        const auto found = objects.target("wlan0", network);
        return (found.connection + ' ' + found.accessPoint).toStdString();
    };
    const WirelessNetwork home{.ssid = "Home", .security = Security::WPA2};
    EXPECT_EQ(target(home), "/old /strong") << "available comes before recently used";
    set(".Device", "AvailableConnections", paths({}));
    EXPECT_EQ(target(home), "/new /strong");
    EXPECT_EQ(target({.ssid = "Home", .security = Security::None}), " ");
    EXPECT_EQ(target({.ssid = "Home", .security = Security::Enterprise}), " ");
    store("/hotspot", "Mine", "wpa-psk", 1, "ap");
    EXPECT_EQ(target({.ssid = "Mine", .security = Security::WPA2}), " ");
    objects.remove("/new", {kBase + ".Settings.Connection"});
    objects.remove("/strong", {kBase + ".AccessPoint"});
    EXPECT_EQ(target(home), "/old /weak");
}

TEST_F(NetworkManagerObjectsTest, PropertiesOfUnexpectedTypesCountAsMissing) {
    set(".Device.Wireless", "AccessPoints", "garbage");
    set(".Device.Wireless", "Bitrate", "9");
    set(".Device", "Ip4Config", 3);
    objects.change("/ip6", kBase + ".IP6Config", {{"AddressData", QStringList{"x"}}});
    objects.change("/unknown", kBase + ".Device.Wireless", {{"HwAddress", "x"}});
    EXPECT_EQ(adapter().speed, std::nullopt);
    EXPECT_TRUE(adapter().addresses.empty());
    ASSERT_EQ(adapter().networks.size(), 1U) << "the stored one";
    EXPECT_FALSE(adapter().networks.front().isVisible);
}

} // namespace
