#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "menubar/ItemPreferences.h"
#include "platform/Log.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "prefs/HalvexPrefsTools.h"

#include <memory>
#include <string>

using namespace platform;
using extras::ClockItem;
namespace clock_format = extras::clock_format;

namespace {

constexpr const char* kFormatKey = "Format"; // "MenuClockFormat" in the file

/// The product's clock. Its format is the string "MenuClockFormat" in the product's preferences.
/// Changes take effect immediately.
class HalvexTimeMenu final : public ClockItem {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        settings_ = menubar::preferencesOf(bundle);
        if (!ClockItem::initWithBundle(bundle))
            return nullptr;
        addActions();
        settingsWatch_ = settings_.onChange([this](const auto&) { reloadFormat(); });
        return shared_from_this();
    }

    void willUnload() override {
        settingsWatch_.reset();
        ClockItem::willUnload();
    }

    /// The pane also contains the calculator. Without it, only a running calculator can be shown.
    bool validateMenuItem(const MenuItem& item) override {
        if (&item != calculator_ && &item != preferences_)
            return ClockItem::validateMenuItem(item);
        return HalvexPrefsTools::HalvexPrefsBundle() ||
               (&item == calculator_ && HalvexPrefsTools::findHalvexBGProcess(nullptr));
    }

  private:
    void addActions() {
        menu_->addSeparator();
        calculator_ = &menu_->addItem(
            "Calculator", [this](MenuItem& sender) { OpenCalculator(&sender); }, weak_from_this());
        preferences_ = &menu_->addItem(
            "Preferences…", [this](MenuItem& sender) { HalvexPrefs(&sender); }, weak_from_this());
    }

    std::string preferredFormat() override {
        std::string format = settings_.string(kFormatKey, clock_format::longDefault());
        if (clock_format::isUsable(format))
            return format;
        logLine("cannot use the clock format in %@: MenuClockFormat is not a usable format",
                settings_.file());
        return clock_format::longDefault();
    }

    Preferences settings_;
    std::unique_ptr<Watch> settingsWatch_;
    const MenuItem* calculator_ = nullptr;
    const MenuItem* preferences_ = nullptr;
};

} // namespace

HALVEX_MENU_EXTRA(HalvexTimeMenu)
