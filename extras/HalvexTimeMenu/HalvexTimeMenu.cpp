#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "menubar/PreferencesFile.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/values/PropertyList.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "prefs/HalvexPrefsTools.h"

#include <memory>
#include <string>
#include <string_view>
#include <utility>

using namespace platform;
using extras::ClockItem;
namespace clock_format = extras::clock_format;

namespace {

constexpr const char* kFormatKey = "MenuClockFormat";

/// The product's clock. Its format is the string "MenuClockFormat" in the preferences file. Changes
/// to the file take effect immediately.
class HalvexTimeMenu final : public ClockItem {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!ClockItem::initWithBundle(std::move(bundle)))
            return nullptr;
        addActions();
        preferencesWatch_ =
            fileManager().watchFile(menubar::preferencesFile(), [this] { reloadFormat(); });
        return shared_from_this();
    }

    void willUnload() override {
        preferencesWatch_.reset();
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
        const std::string file = menubar::preferencesFile();
        if (!fileManager().fileExists(file))
            return clock_format::longDefault();
        const auto preferences = propertyLists().read(file);
        if (!preferences)
            return defaultAfterError(file, preferences.error.text());
        if (!preferences.value->dictionary())
            return defaultAfterError(file, "the root is not a dictionary");
        if (!preferences.value->find(kFormatKey))
            return clock_format::longDefault();
        const std::string_view format = preferences.value->stringAt(kFormatKey);
        if (!clock_format::isUsable(format))
            return defaultAfterError(file, "MenuClockFormat is not a usable format");
        return std::string(format);
    }

    static std::string defaultAfterError(const std::string& file, const std::string& reason) {
        logLine("cannot read the clock format from %@: %@", file, reason);
        return clock_format::longDefault();
    }

    std::unique_ptr<Watch> preferencesWatch_;
    const MenuItem* calculator_ = nullptr;
    const MenuItem* preferences_ = nullptr;
};

} // namespace

HALVEX_MENU_EXTRA(HalvexTimeMenu)
