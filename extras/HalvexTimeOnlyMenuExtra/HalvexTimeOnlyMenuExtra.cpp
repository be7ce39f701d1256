#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "extras/shared/Texts.h"
#include "menubar/ItemPreferences.h"
#include "platform/Log.h"
#include "platform/widgets/MenuExtraPlugIn.h"

#include <memory>
#include <string>
#include <utility>

using namespace platform;
namespace clock_format = extras::clock_format;

namespace {

/// The time in the bar, without the date, which is in the menu. Its format is the string
/// "TimeOnlyClockFormat" in the product's preferences.
class HalvexTimeOnlyMenuExtra final : public extras::ClockItem {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (bundle)
            extras::bindTexts(*bundle);
        settings_ = menubar::preferencesOf(bundle);
        if (!ClockItem::initWithBundle(std::move(bundle)))
            return nullptr;
        settingsWatch_ = settings_.onChange([this](const auto&) { reloadFormat(); });
        return shared_from_this();
    }

    void willUnload() override {
        settingsWatch_.reset();
        ClockItem::willUnload();
    }

  private:
    std::string preferredFormat() override {
        const std::string format = settings_.string("Format", clock_format::time());
        const bool isUsable = clock_format::isUsable(format);
        if (!isUsable && format != refused_)
            logLine("cannot use the clock format in %@: TimeOnlyClockFormat is not a usable format",
                    settings_.file());
        refused_ = isUsable ? "" : format;
        return isUsable ? format : clock_format::time();
    }

    Preferences settings_;
    std::unique_ptr<Watch> settingsWatch_;
    std::string refused_; ///< the format that was logged last
};

} // namespace

HALVEX_MENU_EXTRA(HalvexTimeOnlyMenuExtra)
