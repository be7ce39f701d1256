#include "platform/qt/BusWireless.h"

#include "tests/desktop/support/FakeService.h"
#include "tests/platform/qt/DBusMock.h"
#include "tests/platform/qt/MainLoop.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <QCoreApplication>

#include <gmock/gmock.h>

using namespace platform;
using test::eventually;
using test::eventuallyWithoutBlocking;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kManager = "org.freedesktop.NetworkManager";
constexpr const char* kRoot = "/org/freedesktop";

std::string words(const WirelessNetwork& network) {
    return network.name + ' ' + std::to_string(network.strength) + '%' +
           (network.security && requiresPassword(*network.security) ? " locked" : "") +
           (network.isKnown ? " known" : "") + (network.isVisible ? "" : " far");
}

/// "change on", and for each adapter a line such as "wlan0 connected to NETWORK; NETWORK; NETWORK".
std::string words(const WirelessStatus& status) {
    std::string text = status.isReady ? "" : "not ready ";
    text += status.canChange ? "change " : "read ";
    text += status.isRadioOn ? "on" : "off";
    for (const WirelessAdapter& adapter : status.adapters) {
        static constexpr const char* kStates[] = {"off", "disconnected", "connecting", "connected"};
        text += '\n' + adapter.interface + ' ' + kStates[static_cast<int>(adapter.state)];
        if (adapter.network)
            text += " to " + words(*adapter.network);
        for (const WirelessNetwork& network : adapter.networks)
            text += "; " + words(network);
    }
    return text;
}

struct NetworkManagerMock : test::DBusMock {
    explicit NetworkManagerMock(const test::PrivateBus& bus)
        : DBusMock(bus, "networkmanager", kManager, kRoot) {}
    QString addAdapter(const QString& interface) {
        return control("AddWiFiDevice", {interface, interface, 30});
    }
    QString addAccessPoint(const QString& device, const QString& path, const QString& ssid,
                           unsigned strength, unsigned security) {
        return control("AddAccessPoint",
                       {device, path, ssid, "00:00:00:00:00:01", 2U, 2412U, 54000U,
                        QVariant::fromValue(static_cast<uchar>(strength)), security});
    }
    void setProperty(const QString& path, const QString& interface, const QString& name,
                     const QVariant& value) {
        call(path, "org.freedesktop.DBus.Properties", "Set",
             {interface, name, QVariant::fromValue(QDBusVariant(value))});
    }
};

class BusWirelessTest : public testing::Test {
  protected:
    void observe() {
        watch = wireless.observe([this] { ++notified; });
    }
    bool shows(const std::string& text) {
        const bool result =
            eventuallyWithoutBlocking([&] { return words(wireless.status()) == text; });
        EXPECT_EQ(words(wireless.status()), text);
        return result;
    }
    const WirelessNetwork& network(const std::string& name) {
        static const WirelessNetwork kUnknown{.ssid = "?", .name = "?"};
        for (const WirelessAdapter& adapter : wireless.status().adapters)
            for (const WirelessNetwork& one : adapter.networks)
                if (one.name == name)
                    return one;
        return kUnknown;
    }

    test::MainLoop mainLoop;
    test::RecordingLog log;
    test::PrivateBus bus;
    test::TemporaryFolder folder;
    platform::qt::BusWireless wireless{
        {.busAddress = bus.addressText(),
         .timeLimit = std::chrono::milliseconds(300),
         .kernel = {.interfaces = folder.path().string(), .wireless = folder.file("wireless")}}};
    std::unique_ptr<Watch> watch;
    int notified = 0;
};

TEST_F(BusWirelessTest, FollowsAdaptersAndNetworksAndChangesThem) {
    NetworkManagerMock manager(bus);
    observe();
    ASSERT_TRUE(shows("change on"));
    const QString wlan1 = manager.addAdapter("wlan1");
    const QString wlan0 = manager.addAdapter("wlan0");
    ASSERT_TRUE(shows("change on\nwlan0 disconnected\nwlan1 disconnected"));

    manager.addAccessPoint(wlan0, "a", "Home", 60, 0x100);
    wireless.scan();
    EXPECT_TRUE(eventually([&] { return manager.wasCalled(wlan0, "RequestScan"); }));
    const QString near = manager.addAccessPoint(wlan0, "b", "Home", 80, 0x100);
    manager.addAccessPoint(wlan0, "c", "Café", 90, 0);
    manager.addAccessPoint(wlan0, "d", "", 99, 0);
    manager.control("AddWiFiConnection", {wlan0, "home", "Home", ""});
    ASSERT_TRUE(shows("change on\nwlan0 disconnected; Café 90%; Home 80% locked known\n"
                      "wlan1 disconnected; Home 0% locked known far"));
    EXPECT_LT(notified, 12) << "a burst of signals is one notification";

    EXPECT_TRUE(wireless.connect("wlan0", network("Home")));
    ASSERT_TRUE(shows("change on\nwlan0 connected to Home 80% locked known; Café 90%; "
                      "Home 80% locked known\nwlan1 disconnected; Home 0% locked known far"));
    manager.control("RemoveAccessPoint", {wlan0, near});
    EXPECT_TRUE(wireless.connect("wlan0", network("Café")));
    ASSERT_TRUE(shows("change on\nwlan0 connected to Café 90% known; Café 90% known; "
                      "Home 60% locked known\nwlan1 disconnected; Café 0% known far; "
                      "Home 0% locked known far"));

    manager.emitSignal("org.freedesktop.DBus.ObjectManager", "InterfacesRemoved", "oas",
                       {QVariant::fromValue(QDBusObjectPath(wlan1)),
                        QStringList{"org.freedesktop.NetworkManager.Device",
                                    "org.freedesktop.NetworkManager.Device.Wireless"}});
    EXPECT_TRUE(wireless.setRadio(WirelessRadio::Off));
    ASSERT_TRUE(shows("change off\nwlan0 off"));
    EXPECT_TRUE(wireless.setRadio(WirelessRadio::On));
    EXPECT_TRUE(eventually([&] { return wireless.status().isRadioOn; }));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(BusWirelessTest, MalformedSignalsAreIgnored) {
    NetworkManagerMock manager(bus);
    observe();
    const QString wlan0 = manager.addAdapter("wlan0");
    manager.addAccessPoint(wlan0, "a", "Home", 60, 0x100);
    ASSERT_TRUE(shows("change on\nwlan0 disconnected; Home 60% locked"));
    for (const char* member : {"InterfacesAdded", "InterfacesRemoved"})
        manager.emitSignal("org.freedesktop.DBus.ObjectManager", member, "s", {"garbage"});
    manager.setProperty(wlan0, "org.freedesktop.NetworkManager.Device.Wireless", "AccessPoints", 7);
    ASSERT_TRUE(shows("change on\nwlan0 disconnected"));
    EXPECT_THAT(log.take(), IsEmpty());
}

TEST_F(BusWirelessTest, ImpossibleAndFailedRequestsAreLogged) {
    NetworkManagerMock manager(bus);
    EXPECT_FALSE(wireless.setRadio(WirelessRadio::Off)) << "without an observer";
    observe();
    manager.addAdapter("wlan0");
    ASSERT_TRUE(shows("change on\nwlan0 disconnected"));
    EXPECT_FALSE(wireless.connect("wlan9", network("?")));
    EXPECT_FALSE(wireless.connect("wlan0", network("?")));
    EXPECT_FALSE(wireless.disconnect("wlan9"));
    EXPECT_TRUE(wireless.disconnect("wlan0")) << "the mock does not have this method";
    EXPECT_TRUE(eventually([&] { return log.contains("cannot disconnect wlan0: "); }));
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 5U);
    EXPECT_THAT(std::vector(lines.begin(), lines.begin() + 4),
                ElementsAre("wireless networks cannot be changed now",
                            "cannot connect to \"?\": there is no adapter wlan9",
                            "cannot connect to \"?\": it is neither visible nor known",
                            "cannot disconnect wlan9: there is no such adapter"));
}

TEST_F(BusWirelessTest, IsReadOnlyWhileNetworkManagerIsNotRunning) {
    folder.write("wlan7/wireless/x", "");
    observe();
    ASSERT_TRUE(shows("read off\nwlan7 off"));
    EXPECT_FALSE(wireless.setRadio(WirelessRadio::On));
    for (int i = 0; i < 2; ++i) {
        NetworkManagerMock manager(bus);
        ASSERT_TRUE(shows("change on"));
        manager.kill();
        ASSERT_TRUE(shows("read off\nwlan7 off"));
    }
    EXPECT_THAT(log.take(),
                ElementsAre("wireless networks cannot be changed: NetworkManager is not running",
                            "wireless networks cannot be changed now",
                            "wireless networks cannot be changed: NetworkManager has exited",
                            "wireless networks cannot be changed: NetworkManager has exited"));
}

TEST_F(BusWirelessTest, ANetworkManagerThatHangsIsQueriedAgainWhenItReplies) {
    NetworkManagerMock manager(bus);
    manager.suspend();
    observe();
    ASSERT_TRUE(shows("read off"));
    wireless.scan();
    manager.resume();
    EXPECT_TRUE(eventuallyWithoutBlocking([&] {
        wireless.scan();
        return wireless.status().canChange;
    }));
    manager.suspend();
    wireless.setRadio(WirelessRadio::Off);
    manager.kill();
    ASSERT_TRUE(shows("read off"));
    const auto lines = log.take();
    ASSERT_EQ(lines.size(), 2U) << testing::PrintToString(lines);
    EXPECT_THAT(lines[0], testing::StartsWith("wireless networks cannot be changed: "
                                              "NetworkManager does not report its state: "));
    EXPECT_EQ(lines[1], "wireless networks cannot be changed: NetworkManager has exited");
}

TEST_F(BusWirelessTest, AReplyOfAnUnexpectedTypeIsLogged) {
    auto peer = QDBusConnection::connectToBus(bus.address(), "garbage");
    const auto signal = [&](const char* member) {
        peer.send(QDBusMessage::createSignal(kRoot, "org.freedesktop.DBus.ObjectManager", member));
    };
    test::FakeService manager(peer, kManager, kRoot, [&](const auto&) {
        signal("InterfacesAdded"); // and is not taken for the reply
        test::runFor(100);
        EXPECT_FALSE(wireless.status().isReady);
        return "garbage";
    });
    observe();
    ASSERT_TRUE(shows("read off"));
    EXPECT_THAT(log.take(), ElementsAre("wireless networks cannot be changed: NetworkManager does "
                                        "not report its state: its reply has the signature \"s\""));
    QDBusConnection::disconnectFromBus("garbage");
}

TEST_F(BusWirelessTest, AMissingBusIsLoggedOnce) {
    bus.kill();
    for (int i = 0; i < 2; ++i) {
        observe();
        ASSERT_TRUE(shows("read off"));
        watch.reset();
        ASSERT_TRUE(shows("not ready read off"));
    }
    EXPECT_THAT(
        log.take(),
        ElementsAre(
            "wireless networks cannot be changed: there is no system bus, or it does not reply"));
}

TEST_F(BusWirelessTest, IsConnectedOnlyWhileItIsObserved) {
    NetworkManagerMock manager(bus);
    const auto before = test::connectionCount(bus);
    wireless.scan();
    observe();
    watch = nullptr;
    observe();
    ASSERT_TRUE(shows("change on"));
    EXPECT_EQ(test::connectionCount(bus), before + 1) << "replacing an observer does not reconnect";
    watch.reset();
    EXPECT_TRUE(eventually([&] { return test::connectionCount(bus) == before; }));
    observe();
    watch.reset(); // while it is being connected
    EXPECT_TRUE(eventually([&] { return test::connectionCount(bus) == before; }));
    EXPECT_EQ(words(wireless.status()), "not ready read off");
}

} // namespace
