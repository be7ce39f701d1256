#pragma once

#include "extras/hxWirelessMenu/NetworkMenu.h"
#include "extras/hxWirelessMenu/WirelessIcons.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Preferences.h"
#include "platform/base/Watch.h"

#include <memory>
#include <optional>
#include <string>

namespace extras {

/// The wireless item: the strength of the signal, and a menu of networks. Its title is the string
/// "WirelessTitle" in the product's preferences: "none", "name" or "strength"; another one is
/// logged once.
///
/// It observes the system from the bar's first picture on, and from then on only follows its
/// messages. Nothing of it runs while there is no adapter. It is redrawn only if the symbol, the
/// network or the title changes. Main thread only.
class WirelessMenu final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<platform::MenuExtra>
    initWithBundle(std::shared_ptr<platform::Bundle> bundle) override;
    void menuWillOpen() override;
    void menuDidClose() override;
    void willUnload() override;

    std::string toolTip() const override;
    platform::AccessibleDescription accessibleTexts() const override;

  private:
    void observe();
    void update();
    void showTitle(const std::optional<std::string>& title);
    std::optional<std::string> titleOf(const platform::WirelessAdapter* adapter);

    WirelessIcons icons_;
    NetworkMenu networks_{icons_};
    platform::Preferences preferences_;
    std::string invalidTitle_; // logged
    std::string ssid_;         // shown
    std::unique_ptr<platform::Watch> start_, statusWatch_, preferencesWatch_;
};

} // namespace extras
