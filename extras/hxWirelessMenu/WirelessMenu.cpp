#include "extras/hxWirelessMenu/WirelessMenu.h"

#include "extras/hxWirelessMenu/WirelessNetworks.h"
#include "extras/hxWirelessMenu/WirelessTexts.h"
#include "extras/shared/Texts.h"
#include "menubar/ItemPreferences.h"
#include "platform/Log.h"
#include "platform/Timers.h"

using namespace platform;

namespace extras {
namespace {

constexpr const char* kTitleKey = "Title"; // "WirelessTitle" in the file
constexpr std::size_t kLongestName = 20;   // in the bar, in characters

WirelessIcons::Symbol symbolOf(const WirelessStatus& status) {
    using Symbol = WirelessIcons::Symbol;
    const WirelessAdapter* const adapter = mainAdapter(status);
    if (!status.isReady)
        return Symbol::Level0;
    if (!adapter)
        return Symbol::NoAdapter;
    switch (adapter->state) {
    case WirelessState::Off:
        return Symbol::Off;
    case WirelessState::Disconnected:
        return Symbol::Disconnected;
    case WirelessState::Connecting:
        return Symbol::Connecting;
    case WirelessState::Connected:
        break;
    }
    return static_cast<Symbol>(levelOfStrength(adapter->network ? adapter->network->strength : 0));
}

/// Returns a text such as "Home, 70%, 433 Mbit/s".
std::string toolTipOf(const WirelessAdapter& adapter) {
    if (adapter.state != WirelessState::Connected || !adapter.network)
        return stateText(adapter);
    std::string text = networkName(*adapter.network);
    text += ", " + strengthText(adapter.network->strength);
    if (adapter.speed)
        text += ", " + speedText(*adapter.speed);
    return text;
}

} // namespace

std::shared_ptr<MenuExtra> WirelessMenu::initWithBundle(std::shared_ptr<Bundle> bundle) {
    if (!HalvexMenuExtraBase::initWithBundle(bundle))
        return nullptr;
    bindTexts(*bundle);
    menu_ = networks_.menu();
    preferences_ = menubar::preferencesOf(bundle);
    preferencesWatch_ = preferences_.onChange([this](const auto&) { update(); });
    start_ = timers().after({}, {}, [this] { observe(); });
    if (!start_)
        observe(); // out of timers
    update();
    return shared_from_this();
}

void WirelessMenu::menuWillOpen() {
    networks_.open(weak_from_this());
}
void WirelessMenu::menuDidClose() {
    networks_.close();
}

// Made when they are needed: the strength changes all the time.
std::string WirelessMenu::toolTip() const {
    const WirelessStatus& status = wireless().status();
    const WirelessAdapter* const adapter = mainAdapter(status);
    if (!adapter)
        return status.isReady ? tr("No wireless adapter") : "";
    return status.isRadioOn ? toolTipOf(*adapter) : tr("Wireless is off");
}
AccessibleDescription WirelessMenu::accessibleTexts() const {
    const WirelessStatus& status = wireless().status();
    return {.value = status.isReady ? spokenState(mainAdapter(status)) : ""};
}

void WirelessMenu::willUnload() {
    start_.reset();
    statusWatch_.reset();
    preferencesWatch_.reset();
    HalvexMenuExtraBase::willUnload();
}

void WirelessMenu::observe() {
    statusWatch_ = wireless().observe([this] {
        networks_.statusChanged();
        update();
    });
    update();
}

void WirelessMenu::update() {
    const WirelessStatus& status = wireless().status();
    const WirelessAdapter* const adapter = mainAdapter(status);
    showTitle(titleOf(adapter));
    const auto symbol = icons_.symbol(symbolOf(status));
    const std::string ssid = adapter && adapter->network ? adapter->network->ssid : "";
    const bool isSame = symbol == image() && ssid == ssid_;
    setImage(symbol); // all have the same width
    ssid_ = ssid;
    if (!isSame)
        view()->setNeedsDisplay(true); // also has the new texts announced
}

/// Unlike setTitle, draws nothing if the title is missing and already was.
void WirelessMenu::showTitle(const std::optional<std::string>& title) {
    const auto shown = attributedTitle();
    if (title || shown)
        setTitle(title);
}

std::optional<std::string> WirelessMenu::titleOf(const WirelessAdapter* adapter) {
    const std::string choice = preferences_.string(kTitleKey, "none");
    const bool isValid = choice == "none" || choice == "name" || choice == "strength";
    if (!isValid && choice != invalidTitle_)
        logLine("cannot use WirelessTitle in %@: \"%@\" is not none, name or strength",
                preferences_.file(), choice);
    invalidTitle_ = isValid ? "" : choice;
    if (!adapter || adapter->state != WirelessState::Connected || !adapter->network)
        return std::nullopt;
    if (choice == "name")
        return shortened(networkName(*adapter->network), kLongestName);
    if (choice == "strength")
        return strengthText(adapter->network->strength);
    return std::nullopt;
}

} // namespace extras
