#include "extras/hxWirelessMenu/NetworkMenu.h"

#include "extras/hxWirelessMenu/NetworkSettings.h"
#include "extras/hxWirelessMenu/WirelessNetworks.h"
#include "extras/hxWirelessMenu/WirelessTexts.h"
#include "extras/shared/Texts.h"
#include "platform/Applications.h"
#include "platform/Pasteboard.h"

#include <algorithm>
#include <utility>

using namespace platform;

namespace extras {
namespace {

constexpr std::size_t kMaximumNetworks = 12; // in the menu itself; the others are in a submenu
constexpr std::size_t kMaximumAddresses = 3;

MenuRow separator(const std::string& identifier) {
    return {.identifier = identifier, .kind = MenuRow::Kind::Separator};
}

MenuRow header(const std::string& identifier, std::string title) {
    return {.identifier = identifier, .title = std::move(title), .kind = MenuRow::Kind::Header};
}

/// A row with a value. Choosing it copies the value.
MenuRow detail(const std::string& identifier, std::string title, std::string value) {
    return {
        .identifier = identifier,
        .title = std::move(title),
        .trailingText = std::move(value),
        .toolTip = tr("Choose to copy"),
        .action = [](MenuItem& sender) { generalPasteboard().setString(sender.trailingText()); }};
}

MenuRow action(const std::string& identifier, std::string title, std::function<void()> run) {
    return {.identifier = identifier,
            .title = std::move(title),
            .action = [run = std::move(run)](MenuItem&) { run(); }};
}

/// Returns the addresses that other machines can use, or else the first one.
std::vector<std::string> shownAddresses(const WirelessAdapter& adapter) {
    std::vector<std::string> result;
    for (const std::string& address : adapter.addresses)
        if (!address.starts_with("fe80:") && result.size() < kMaximumAddresses)
            result.push_back(address);
    if (result.empty() && !adapter.addresses.empty())
        result.push_back(adapter.addresses.front());
    return result;
}

std::string toolTipOf(const WirelessNetwork& network) {
    if (!network.security)
        return {};
    return fill(tr("Security: %1"), {securityText(*network.security)});
}

const WirelessAdapter* adapterNamed(const std::string& interface) {
    const auto& adapters = wireless().status().adapters;
    const auto found = std::ranges::find(adapters, interface, &WirelessAdapter::interface);
    return found == adapters.end() ? nullptr : &*found;
}

} // namespace

void NetworkMenu::open(std::weak_ptr<MenuTarget> target) {
    target_ = std::move(target);
    isOpen_ = true;
    shown_.clear();
    settings_ = networkSettingsEntry();
    wireless().scan();
    update();
}

void NetworkMenu::statusChanged() {
    attempt_.update(wireless().status());
    if (isOpen_)
        update();
}

void NetworkMenu::update() {
    showRows(*menu_, rows(), target_);
}

NetworkMenu::Rows NetworkMenu::rows() {
    const WirelessStatus& status = wireless().status();
    const WirelessAdapter* const adapter = mainAdapter(status);
    Rows rows;
    if (!status.isReady)
        rows.push_back(header("state", tr("Waiting for the network service")));
    else if (!adapter)
        rows.push_back(header("state", tr("No wireless adapter")));
    else if (!status.isRadioOn)
        rows.push_back(header("state", tr("Wireless is off")));
    else {
        addAdapter(rows, *adapter, status.adapters.size() == 1);
        addOtherAdapters(rows, *adapter);
    }
    rows.push_back(separator("switches"));
    addSwitches(rows);
    return rows;
}

void NetworkMenu::addAdapter(Rows& rows, const WirelessAdapter& adapter, bool isOnlyOne) {
    const std::string state = stateText(adapter);
    rows.push_back(
        header("state", isOnlyOne ? state : fill(tr("%1: %2"), {adapter.interface, state})));
    addConnection(rows, adapter);
    addNetworks(rows, adapter);
}

void NetworkMenu::addConnection(Rows& rows, const WirelessAdapter& adapter) {
    const bool isConnected = adapter.state == WirelessState::Connected;
    if (isConnected) {
        for (int number = 0; const std::string& address : shownAddresses(adapter))
            rows.push_back(detail("address " + std::to_string(number++), tr("Address"), address));
        if (adapter.network)
            rows.push_back(
                detail("strength", tr("Strength"), strengthText(adapter.network->strength)));
        if (adapter.speed)
            rows.push_back(detail("speed", tr("Speed"), speedText(*adapter.speed)));
        if (adapter.network && adapter.network->security)
            rows.push_back(
                detail("security", tr("Security"), securityText(*adapter.network->security)));
        if (!adapter.hardwareAddress.empty())
            rows.push_back(detail("hardware", tr("Hardware Address"), adapter.hardwareAddress));
    }
    const bool isBusy = isConnected || adapter.state == WirelessState::Connecting;
    if (isBusy && wireless().status().canChange)
        rows.push_back(action((isConnected ? "disconnect " : "stop ") + adapter.interface,
                              isConnected ? tr("Disconnect") : tr("Stop Connecting"),
                              [this, interface = adapter.interface] { disconnect(interface); }));
}

void NetworkMenu::addNetworks(Rows& rows, const WirelessAdapter& adapter) {
    auto networks = mergedNetworks(adapter);
    if (networks.empty())
        return;
    sortAsShown(adapter.interface, networks);
    Rows more, known;
    rows.push_back(separator("networks separator"));
    rows.push_back(header("networks", tr("Networks")));
    const std::size_t limit = rows.size() + kMaximumNetworks;
    for (const WirelessNetwork& network : networks) {
        Rows& list = !network.isVisible ? known : rows.size() < limit ? rows : more;
        list.push_back(networkRow(adapter, network));
    }
    addSubmenu(rows, "more " + adapter.interface, tr("More Networks"), more);
    addSubmenu(rows, "known " + adapter.interface, tr("Other Known Networks"), known);
}

MenuRow NetworkMenu::networkRow(const WirelessAdapter& adapter, const WirelessNetwork& network) {
    using State = MenuItem::State;
    const bool canChange = wireless().status().canChange;
    MenuRow row{.identifier =
                    (canChange ? "network " : "fixed ") + adapter.interface + ' ' + network.ssid,
                .title = networkName(network)};
    if (network.isVisible)
        row.image = icons_.level(levelOfStrength(network.strength));
    if (network.security && requiresPassword(*network.security))
        row.trailingImage = icons_.lock();
    if (isCurrent(adapter, network.ssid))
        row.state = adapter.state == WirelessState::Connected ? State::On : State::Mixed;
    if (attempt_.hasFailed(adapter.interface, network.ssid))
        row.subtitle = tr("Could not connect");
    row.toolTip = toolTipOf(network);
    if (canChange)
        row.action = [this, interface = adapter.interface, ssid = network.ssid](MenuItem&) {
            choose(interface, ssid);
        };
    return row;
}

void NetworkMenu::addOtherAdapters(Rows& rows, const WirelessAdapter& shown) {
    bool isFirst = true;
    for (const WirelessAdapter& adapter : wireless().status().adapters) {
        if (adapter.interface == shown.interface)
            continue;
        if (std::exchange(isFirst, false))
            rows.push_back(separator("adapters"));
        Rows content;
        addAdapter(content, adapter, true);
        addSubmenu(rows, "adapter " + adapter.interface,
                   fill(tr("%1: %2"), {adapter.interface, stateText(adapter)}), content);
    }
}

void NetworkMenu::addSubmenu(Rows& rows, const std::string& identifier, std::string title,
                             const Rows& content) {
    if (content.empty())
        return;
    auto& menu = submenus_[identifier];
    if (!menu)
        menu = std::make_shared<Menu>();
    showRows(*menu, content, target_);
    rows.push_back({.identifier = identifier, .title = std::move(title), .submenu = menu});
}

void NetworkMenu::addSwitches(Rows& rows) {
    const WirelessStatus& status = wireless().status();
    if (status.canChange && !status.adapters.empty()) {
        const WirelessRadio other = status.isRadioOn ? WirelessRadio::Off : WirelessRadio::On;
        rows.push_back(action(status.isRadioOn ? "turn off" : "turn on",
                              status.isRadioOn ? tr("Turn Wireless Off") : tr("Turn Wireless On"),
                              [other] { wireless().setRadio(other); }));
    }
    if (settings_)
        rows.push_back(action("settings", tr("Network Settings…"), [this] { openSettings(); }));
    else
        rows.push_back({.identifier = "no settings",
                        .title = tr("Network Settings…"),
                        .subtitle = tr("No settings program is installed")});
}

void NetworkMenu::sortAsShown(const std::string& interface,
                              std::vector<WirelessNetwork>& networks) {
    auto& shown = shown_[interface];
    std::ranges::stable_sort(networks, {}, [&](const WirelessNetwork& network) {
        return std::ranges::find(shown, network.ssid) - shown.begin();
    });
    shown.clear();
    for (const WirelessNetwork& network : networks)
        shown.push_back(network.ssid);
}

void NetworkMenu::choose(const std::string& interface, const std::string& ssid) {
    const WirelessAdapter* const adapter = adapterNamed(interface);
    if (!adapter || isCurrent(*adapter, ssid))
        return;
    const auto networks = mergedNetworks(*adapter);
    const auto network = std::ranges::find(networks, ssid, &WirelessNetwork::ssid);
    if (network == networks.end())
        return;
    if (network->security == WirelessSecurity::Enterprise && !network->isKnown && settings_)
        return openSettings();
    attempt_.start(interface, ssid);
    if (!wireless().connect(interface, *network))
        attempt_.fail();
}

void NetworkMenu::disconnect(const std::string& interface) {
    attempt_.forget();
    wireless().disconnect(interface);
}

void NetworkMenu::openSettings() const {
    if (settings_)
        applications().launch(*settings_);
}

} // namespace extras
