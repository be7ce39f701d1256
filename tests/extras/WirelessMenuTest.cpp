#include "extras/hxWirelessMenu/WirelessMenu.h"
#include "extras/hxWirelessMenu/WirelessIcons.h"
#include "extras/hxWirelessMenu/WirelessTexts.h"
#include "identifiers/ExportedIdentifiers.h"
#include "testing/ItemUnderTest.h"
#include "testing/ManualApplications.h"
#include "testing/ManualWireless.h"
#include "tests/support/ScopedEnvironment.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <set>
#include <tuple>

using namespace platform;
using namespace std::chrono_literals;
using extras::WirelessMenu;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::IsEmpty;
using testing::Not;

HALVEX_MENU_EXTRA(WirelessMenu)

namespace {

using Security = WirelessSecurity;
using State = WirelessState;
using Strings = std::vector<std::string>;

WirelessNetwork network(const std::string& name, int strength, Security security = Security::WPA2,
                        bool isKnown = false) {
    return {.ssid = name,
            .name = name,
            .security = security,
            .strength = strength,
            .isVisible = strength > 0,
            .isKnown = isKnown};
}

const WirelessNetwork kHome = network("Home", 70, Security::WPA2, true);
const WirelessNetwork kCafe = network("Café", 90, Security::None);

WirelessAdapter adapter(State state, std::optional<WirelessNetwork> current = {},
                        std::vector<WirelessNetwork> networks = {kCafe, kHome}) {
    return {.interface = "wlan0",
            .state = state,
            .network = std::move(current),
            .networks = std::move(networks)};
}

WirelessStatus status(std::vector<WirelessAdapter> adapters) {
    return {.isReady = true, .canChange = true, .isRadioOn = true, .adapters = std::move(adapters)};
}

class WirelessMenuTest : public testing::Test {
  protected:
    void start() {
        ASSERT_TRUE(item.load("WirelessMenu", {{"CFBundleIdentifier", HalvexNetMenuID}}));
        item.timers.advance(0s);
        item.log.take();
    }
    void show(WirelessState state, std::optional<WirelessNetwork> current = {}) {
        wireless.show(status({adapter(state, std::move(current))}));
    }
    /// The titles of the networks, with their marks.
    Strings networks() const {
        Strings titles = item.menuTitles();
        const auto first = std::ranges::find(titles, "(Networks)");
        return first == titles.end() ? Strings{}
                                     : Strings(first + 1, std::find(first, titles.end(), "-"));
    }
    std::shared_ptr<MenuItem> entry(const std::string& title) const {
        for (const auto& one : item.extra().menu()->items())
            if (one->title() == title)
                return one;
        return std::make_shared<MenuItem>("missing");
    }
    std::string spoken() const { return item.extra().view()->accessibleDescription().value; }

    const test::ScopedEnvironment environment{"XDG_CURRENT_DESKTOP", "KDE"};
    halvextest::ManualApplications applications;
    halvextest::ManualWireless wireless;
    halvextest::ItemUnderTest item;
};

TEST_F(WirelessMenuTest, ConnectsToTheSystemAfterTheFirstPicture) {
    ASSERT_TRUE(item.load("WirelessMenu", {{"CFBundleIdentifier", HalvexNetMenuID}}));
    EXPECT_FALSE(wireless.isObserved());
    EXPECT_TRUE(item.extra().image()->isTemplate());
    const float width = item.extra().length();
    EXPECT_THAT(item.menuTitles(), Contains("(Waiting for the network service)"));
    item.timers.advance(0s);
    EXPECT_TRUE(wireless.isObserved());
    show(State::Connected, kHome);
    EXPECT_EQ(item.extra().length(), width);
    EXPECT_THAT(item.timers.running(), IsEmpty());
    item.extra().willUnload();
    EXPECT_FALSE(wireless.isObserved());
}

TEST_F(WirelessMenuTest, FollowsAdaptersThatComeAndGo) {
    start();
    struct Row {
        WirelessStatus status;
        const char *spoken, *toolTip, *header;
    };
    auto off = status({adapter(State::Off)});
    off.isRadioOn = false;
    auto fast = adapter(State::Connected, kHome);
    fast.speed = 1'300'000'000;
    auto second = adapter(State::Connected, kCafe);
    second.interface = "wlan1";
    std::vector<const Image*> symbols;
    for (const auto& [now, value, toolTip, header] : std::vector<Row>{
             {status({}), "no wireless adapter", "No wireless adapter", "(No wireless adapter)"},
             {off, "off", "Wireless is off", "(Wireless is off)"},
             {status({adapter(State::Off)}), "off", "Not ready", "(Not ready)"},
             {status({adapter(State::Disconnected)}), "not connected", "Not connected",
              "(Not connected)"},
             {status({adapter(State::Connecting, kHome)}), "connecting to Home",
              "Connecting to Home…", "(Connecting to Home…)"},
             {status({adapter(State::Connecting)}), "connecting", "Connecting…", "(Connecting…)"},
             {status({fast}), "connected to Home, 70 percent", "Home, 70%, 1.3 Gbit/s",
              "(Connected to Home)"},
             {status({fast, second}), "connected to Café, 90 percent", "Café, 90%",
              "(wlan1: Connected to Café)"},
             {status({adapter(State::Connected, WirelessNetwork{.strength = 20})}),
              "connected to Hidden network, 20 percent", "Hidden network, 20%",
              "(Connected to Hidden network)"},
             {status({}), "no wireless adapter", "No wireless adapter", "(No wireless adapter)"}}) {
        wireless.show(now);
        EXPECT_EQ(spoken(), value);
        EXPECT_EQ(item.extra().view()->toolTip(), toolTip);
        EXPECT_EQ(item.menuTitles().front(), header);
        EXPECT_EQ(item.menuTitles().back(), "(Network Settings…)");
        symbols.push_back(item.extra().image().get());
    }
    EXPECT_EQ(symbols.front(), symbols.back());
    EXPECT_EQ(std::set(symbols.begin(), symbols.end()).size(), 7U)
        << "off and not ready look alike";
}

TEST_F(WirelessMenuTest, IsDrawnOnlyWhenItsSymbolOrNetworkChanges) {
    start();
    show(State::Connected, network("Home", 60));
    for (const auto& [current, strength, isDrawn] : std::vector<std::tuple<const char*, int, bool>>{
             {"Home", 60, false}, {"Home", 70, false}, {"Home", 20, true}, {"Café", 20, true}}) {
        item.host.redisplays = 0;
        wireless.show(status({adapter(State::Connected, network(current, strength), {kHome})}));
        EXPECT_EQ(item.host.redisplays > 0, isDrawn) << current << ' ' << strength;
        EXPECT_THAT(spoken(), testing::HasSubstr(std::to_string(strength))) << "always current";
    }
}

TEST_F(WirelessMenuTest, ListsEachNetworkOnceWithTheStrongestFirst) {
    struct Row {
        const char* reason;
        std::vector<WirelessNetwork> networks;
        std::optional<WirelessNetwork> current;
        Strings titles;
    };
    start();
    auto blank = network(" ", 5), odd = network("\uFFFDx", 4);
    blank.name = "  ";
    odd.ssid = "\xFFx";
    for (const auto& [reason, networks, current, titles] : std::vector<Row>{
             {"by strength", {kHome, kCafe}, {}, {"Café", "Home"}},
             {"with the connected one marked", {kCafe, kHome}, kHome, {"Café", "* Home"}},
             {"a hidden one while it is connected",
              {kCafe},
              network("Attic", 30),
              {"Café", "* Attic"}},
             {"one with several securities once",
              {kCafe, network("Home", 95, Security::None), kHome},
              {},
              {"Home", "Café"}},
             {"with the highest strength of all",
              {kCafe, kHome, network("Home", 95, Security::None)},
              {},
              {"Home", "Café"}},
             {"one that is known and one that is visible",
              {kCafe, network("Home", 0, Security::WPA, true), network("Home", 95)},
              {},
              {"Home", "Café"}},
             {"malformed names", {blank, odd, {}}, {}, {"Unnamed network", "\uFFFDx"}},
             {"known ones that are not visible in a submenu",
              {kCafe, network("Office", 0)},
              {},
              {"Café", "Other Known Networks"}}}) {
        wireless.show(
            status({adapter(current ? State::Connected : State::Disconnected, current, networks)}));
        EXPECT_THAT(this->networks(), ElementsAreArray(titles)) << reason;
    }
    wireless.show(status({adapter(State::Disconnected, {}, {})}));
    EXPECT_THAT(item.menuTitles(), Not(Contains("(Networks)")));
}

TEST_F(WirelessMenuTest, ShowsStrengthAndLock) {
    start();
    show(State::Disconnected);
    networks();
    EXPECT_EQ(entry("Café")->trailingImage(), nullptr);
    EXPECT_NE(entry("Home")->trailingImage(), nullptr);
    EXPECT_NE(entry("Home")->image(), entry("Café")->image());
    EXPECT_TRUE(entry("Home")->image()->isTemplate());
    EXPECT_EQ(entry("Home")->toolTip(), "Security: WPA2");
    wireless.show(status({adapter(State::Connected, network("Home", 9, Security::None), {kHome})}));
    networks();
    EXPECT_EQ(entry("Home")->trailingImage(), nullptr) << "the open one is connected";
}

TEST_F(WirelessMenuTest, ListsManyNetworksInASubmenu) {
    start();
    std::vector<WirelessNetwork> many;
    for (int i = 0; i < 30; ++i)
        many.push_back(network("Net " + std::to_string(i), 90 - i));
    wireless.show(status({adapter(State::Disconnected, {}, many)}));
    const Strings titles = networks();
    EXPECT_EQ(titles.size(), 13U);
    EXPECT_EQ(titles.back(), "More Networks");
    const auto& rest = entry("More Networks")->submenu()->items();
    ASSERT_EQ(rest.size(), 18U);
    EXPECT_TRUE(rest.back()->perform());
    EXPECT_EQ(wireless.calls.back(), "connect wlan0 Net 29");
}

TEST_F(WirelessMenuTest, NetworksKeepTheirPlacesWhileTheMenuIsOpen) {
    start();
    show(State::Disconnected);
    item.extra().menuWillOpen();
    const auto home = entry("Home");
    wireless.show(status({adapter(State::Disconnected, {},
                                  {network("New", 99), network("Home", 95), network("Café", 9)})}));
    Strings shown;
    for (const auto& one : item.extra().menu()->items())
        shown.push_back(one->title());
    EXPECT_EQ(Strings(shown.begin() + 3, shown.begin() + 6), (Strings{"Café", "Home", "New"}));
    EXPECT_EQ(entry("Home"), home);
    item.extra().menuDidClose();
    EXPECT_THAT(networks(), ElementsAre("New", "Home", "Café"));
}

TEST_F(WirelessMenuTest, ShowsTheConnectionAndCopiesItsValues) {
    start();
    WirelessAdapter connected = adapter(State::Connected, kHome, {});
    connected.addresses = {"192.168.1.20", "fe80::1", "2001:db8::7"};
    connected.hardwareAddress = "11:22:33:44:55:66";
    connected.speed = 433'400'000;
    wireless.show(status({connected}));
    EXPECT_TRUE(item.choose("Speed"));
    EXPECT_EQ(item.pasteboard.text, "433 Mbit/s");
    Strings values;
    for (const auto& one : item.extra().menu()->items())
        if (!one->trailingText().empty())
            values.push_back(one->title() + ": " + one->trailingText());
    EXPECT_THAT(values, ElementsAre("Address: 192.168.1.20", "Address: 2001:db8::7",
                                    "Strength: 70%", "Speed: 433 Mbit/s", "Security: WPA2",
                                    "Hardware Address: 11:22:33:44:55:66"));
    EXPECT_TRUE(item.choose("Disconnect"));
    show(State::Connecting, kHome);
    EXPECT_TRUE(item.choose("Stop Connecting"));
    EXPECT_THAT(wireless.calls,
                ElementsAre("scan", "scan", "disconnect wlan0", "scan", "disconnect wlan0"));
}

TEST_F(WirelessMenuTest, SwitchesTheAdaptersOnAndOff) {
    start();
    show(State::Disconnected);
    EXPECT_TRUE(item.choose("Turn Wireless Off"));
    EXPECT_EQ(wireless.calls.back(), "radio off");
    auto off = status({adapter(State::Off)});
    off.isRadioOn = false;
    wireless.show(off);
    EXPECT_FALSE(item.choose("Turn Wireless Off"));
    EXPECT_TRUE(item.choose("Turn Wireless On"));
    EXPECT_EQ(wireless.calls.back(), "radio on");
    off.canChange = false;
    wireless.show(off);
    EXPECT_FALSE(item.choose("Turn Wireless On")) << "the system takes no requests";
}

TEST_F(WirelessMenuTest, ConnectsAndShowsWhatFailed) {
    start();
    const auto failure = [&](const char* name) {
        item.menuTitles();
        return entry(name)->subtitle();
    };
    show(State::Connected, kHome);
    EXPECT_TRUE(item.choose("Home"));
    EXPECT_THAT(wireless.calls, Not(Contains("connect wlan0 Home"))) << "it is connected";
    EXPECT_TRUE(item.choose("Café"));
    EXPECT_EQ(wireless.calls.back(), "connect wlan0 Café");
    show(State::Connected, network("Home", 71));
    EXPECT_EQ(failure("Café"), "") << "the request is on its way";
    show(State::Connecting, kCafe);
    EXPECT_THAT(networks(), ElementsAre("Café", "Home"));
    EXPECT_EQ(entry("Café")->state(), MenuItem::State::Mixed);
    show(State::Disconnected);
    EXPECT_EQ(failure("Café"), "Could not connect");
    EXPECT_EQ(failure("Home"), "");
    EXPECT_TRUE(item.choose("Café"));
    show(State::Connecting, kCafe);
    EXPECT_EQ(failure("Café"), "");
    show(State::Connected, kCafe);
    EXPECT_EQ(failure("Café"), "");
    wireless.accepts = false;
    EXPECT_TRUE(item.choose("Home"));
    EXPECT_EQ(failure("Home"), "Could not connect");
    wireless.accepts = true;
    show(State::Connecting, kHome);
    EXPECT_TRUE(item.choose("Stop Connecting"));
    show(State::Disconnected);
    EXPECT_EQ(failure("Home"), "") << "the user has stopped it";
    EXPECT_TRUE(item.choose("Home"));
    for (const State state : {State::Connecting, State::Off, State::Disconnected})
        show(state, state == State::Connecting ? std::optional(kHome) : std::nullopt);
    EXPECT_EQ(failure("Home"), "") << "the adapter was off";
}

TEST_F(WirelessMenuTest, NetworksThatCannotBeJoinedHereAreLeftToTheSettings) {
    start();
    applications.installed = {{.identifier = "nm-connection-editor.desktop"}};
    const auto campus = network("Campus", 50, Security::Enterprise);
    wireless.show(status({adapter(State::Disconnected, {}, {campus})}));
    EXPECT_TRUE(item.choose("Campus"));
    EXPECT_THAT(applications.requests, ElementsAre("launch nm-connection-editor.desktop"));
    EXPECT_THAT(wireless.calls, Not(Contains("connect wlan0 Campus")));
    auto readOnly = status({adapter(State::Connected, kHome)});
    readOnly.canChange = false;
    wireless.show(readOnly);
    EXPECT_THAT(networks(), ElementsAre("(Café)", "(* Home)"));
    EXPECT_THAT(item.menuTitles(), Not(Contains("Disconnect")));
}

TEST_F(WirelessMenuTest, OpensTheSettingsOfTheRunningDesktop) {
    struct Row {
        Strings installed;
        const char* desktop;
        Strings launched;
    };
    start();
    const std::string any = "nm-connection-editor.desktop", kde = "kcm_networkmanagement.desktop",
                      gnome = "gnome-wifi-panel.desktop";
    for (const auto& [installed, desktop, launched] :
         std::vector<Row>{{{any, gnome, kde}, "KDE", {"launch " + kde}},
                          {{any, gnome, kde}, "ubuntu:GNOME", {"launch " + gnome}},
                          {{any, gnome, kde}, "XFCE", {"launch " + any}},
                          {{gnome}, "XFCE", {"launch " + gnome}},
                          {{}, "KDE", {}}}) {
        const test::ScopedEnvironment running("XDG_CURRENT_DESKTOP", desktop);
        applications.installed.clear();
        for (const std::string& one : installed)
            applications.installed.push_back({.identifier = one});
        applications.requests.clear();
        EXPECT_EQ(item.choose("Network Settings…"), !launched.empty()) << desktop;
        EXPECT_EQ(applications.requests, launched) << desktop;
    }
    EXPECT_EQ(entry("Network Settings…")->subtitle(), "No settings program is installed");
}

TEST_F(WirelessMenuTest, ShowsOtherAdaptersInSubmenus) {
    start();
    auto second = adapter(State::Disconnected, {}, {kCafe});
    second.interface = "wlan1";
    wireless.show(status({adapter(State::Connected, kHome), second}));
    EXPECT_EQ(item.menuTitles().front(), "(wlan0: Connected to Home)");
    ASSERT_TRUE(entry("wlan1: Not connected")->submenu());
    for (const auto& one : std::vector(entry("wlan1: Not connected")->submenu()->items()))
        one->perform();
    EXPECT_EQ(wireless.calls.back(), "connect wlan1 Café");
}

TEST_F(WirelessMenuTest, ShowsATitleIfThePreferencesSaySo) {
    start();
    auto settings = item.preferences[appHalvex4Prefs];
    show(State::Connected, network("A network with a long näme", 70));
    for (const auto& [choice, title] : std::vector<std::pair<const char*, const char*>>{
             {"name", "A network with a lo…"}, {"strength", "70%"}, {"none", ""}, {"x", ""}}) {
        settings.set("WirelessTitle", std::string(choice));
        EXPECT_EQ(item.title(), title) << choice;
    }
    show(State::Connected, kHome);
    EXPECT_THAT(item.log.take(),
                ElementsAre(testing::HasSubstr("\"x\" is not none, name or strength")));
    settings.set("WirelessTitle", std::string("name"));
    EXPECT_EQ(item.title(), "Home");
    show(State::Disconnected);
    EXPECT_EQ(item.title(), "");
}

TEST(WirelessTexts, AreShort) {
    for (const auto& [speed, text] :
         std::vector<std::pair<std::uint64_t, const char*>>{{0, "0 Mbit/s"},
                                                            {5'500'000, "6 Mbit/s"},
                                                            {866'700'000, "867 Mbit/s"},
                                                            {1'000'000'000, "1.0 Gbit/s"}})
        EXPECT_EQ(extras::speedText(speed), text);
    for (const auto& [name, text] : std::vector<std::pair<const char*, const char*>>{
             {"", ""},
             {"äöüß", "äöüß"},
             {"äöüßx", "äöü…"},
             {"\xFF\xFF\xFF\xFF\xFF", "\xFF\xFF\xFF…"}})
        EXPECT_EQ(extras::shortened(name, 4), text);
}

TEST(WirelessLevels, DivideTheStrengths) {
    for (const auto& [percent, level] : std::vector<std::pair<int, int>>{{0, 0},
                                                                         {4, 0},
                                                                         {5, 1},
                                                                         {29, 1},
                                                                         {30, 2},
                                                                         {54, 2},
                                                                         {55, 3},
                                                                         {79, 3},
                                                                         {80, 4},
                                                                         {100, 4}})
        EXPECT_EQ(extras::levelOfStrength(percent), level) << percent;
}

} // namespace
