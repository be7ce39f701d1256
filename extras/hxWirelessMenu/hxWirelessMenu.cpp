#include "extras/hxWirelessMenu/NetworkMenu.h"
#include "extras/hxWirelessMenu/WirelessIcons.h"
#include "extras/hxWirelessMenu/WirelessNetworks.h"
#include "extras/hxWirelessMenu/WirelessTexts.h"
#include "extras/shared/Texts.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "menubar/ItemPreferences.h"
#include "platform/Log.h"
#include "platform/Timers.h"
#include "platform/Wireless.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <memory>
#include <optional>
#include <string>
#include <utility>

using namespace platform;
using namespace extras;

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

/// The wireless item: the strength of the signal, and a menu of networks. Its title is the string
/// "WirelessTitle" in the product's preferences: "none", "name" or "strength".
///
/// It connects to the system after the bar's first picture. From then on it only follows the
/// system's messages. Nothing of it runs while there is no adapter.
class WirelessMenu final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(bundle))
            return nullptr;
        bindTexts(*bundle);
        menu_ = networks_.menu();
        preferences_ = menubar::preferencesOf(bundle);
        preferencesWatch_ = preferences_.onChange([this](const auto&) { update(); });
        start_ = timers().after({}, {}, [this] { observe(); });
        update();
        return shared_from_this();
    }

    void menuWillOpen() override { networks_.open(weak_from_this()); }
    void menuDidClose() override { networks_.close(); }

    // Made when they are needed: the strength changes all the time.
    std::string toolTip() const override {
        const WirelessStatus& status = wireless().status();
        const WirelessAdapter* const adapter = mainAdapter(status);
        if (!adapter)
            return status.isReady ? tr("No wireless adapter") : "";
        return toolTipOf(*adapter);
    }
    AccessibleDescription accessibleTexts() const override {
        const WirelessStatus& status = wireless().status();
        return {.value = status.isReady ? spokenState(mainAdapter(status)) : ""};
    }

    void willUnload() override {
        start_.reset();
        statusWatch_.reset();
        preferencesWatch_.reset();
        HalvexMenuExtraBase::willUnload();
    }

  private:
    void observe() {
        statusWatch_ = wireless().observe([this] {
            networks_.statusChanged();
            update();
        });
        update();
    }

    void update() {
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
    void showTitle(const std::optional<std::string>& title) {
        const auto shown = attributedTitle();
        if (title || shown)
            setTitle(title);
    }

    std::optional<std::string> titleOf(const WirelessAdapter* adapter) {
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

    WirelessIcons icons_;
    NetworkMenu networks_{icons_};
    Preferences preferences_;
    std::string invalidTitle_; // logged
    std::string ssid_;         // shown
    std::unique_ptr<Watch> start_, statusWatch_, preferencesWatch_;
};

} // namespace

HALVEX_MENU_EXTRA(WirelessMenu)
