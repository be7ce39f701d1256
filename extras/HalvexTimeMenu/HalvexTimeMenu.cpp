#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "menubar/PreferencesFile.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/PropertyListService.h"
#include "platform/values/PropertyList.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <memory>
#include <string>
#include <utility>

using namespace platform;

namespace {

constexpr const char* kFormatKey = "MenuClockFormat";

/// The product's clock. Its format is the string "MenuClockFormat" in the preferences file, which
/// is followed while the clock runs.
class HalvexTimeMenu final : public ClockItem {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!ClockItem::initWithBundle(std::move(bundle)))
            return nullptr;
        addActions();
        preferencesWatch_ = fileManager().watchFile(HalvexPreferencesFile(), [this] { restart(); });
        return shared_from_this();
    }

    void willUnload() override {
        preferencesWatch_.reset();
        ClockItem::willUnload();
    }

  private:
    void addActions() {
        menu_->addSeparator();
        menu_->addItem(
            "Calculator", [this](MenuItem& sender) { OpenCalculator(&sender); }, weak_from_this());
        menu_->addItem(
            "Preferences…", [this](MenuItem& sender) { HalvexPrefs(&sender); }, weak_from_this());
    }

    std::string preferredFormat() override {
        const std::string file = HalvexPreferencesFile();
        if (!fileManager().fileExists(file))
            return clock_format::longDefault();
        const auto preferences = propertyLists().read(file);
        if (!preferences)
            return defaultAfter(file, preferences.error.reason);
        const auto* dictionary = preferences.value->dictionary();
        if (!dictionary)
            return defaultAfter(file, "its root is no dictionary");
        const PropertyList* format = dictionary->find(kFormatKey);
        if (!format)
            return clock_format::longDefault();
        if (!format->string() || !clock_format::isUsable(*format->string()))
            return defaultAfter(file, "it is no format that shows anything");
        return std::string(*format->string());
    }

    static std::string defaultAfter(const std::string& file, const std::string& reason) {
        logLine("no clock format taken from %@: %@", file, reason);
        return clock_format::longDefault();
    }

    std::unique_ptr<Watch> preferencesWatch_;
};

} // namespace

HALVEX_MENU_EXTRA(HalvexTimeMenu)
