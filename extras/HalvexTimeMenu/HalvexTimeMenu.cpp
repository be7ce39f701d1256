#include "extras/HalvexTimeMenu/ClockTitle.h"
#include "extras/HalvexTimeMenu/ClockView.h"
#include "extras/HalvexTimeMenu/ConvertPanel.h"
#include "extras/HalvexTimeMenu/LocationMenu.h"
#include "extras/HalvexTimeMenu/WarningsMenu.h"
#include "extras/HalvexTimeMenu/WorldClockMenu.h"
#include "extras/clock/ClockFormat.h"
#include "extras/clock/ClockItem.h"
#include "extras/clock/WorldClocks.h"
#include "extras/shared/Texts.h"
#include "menubar/ItemPreferences.h"
#include "platform/EventSource.h"
#include "platform/Log.h"
#include "platform/Pasteboard.h"
#include "platform/Timers.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "prefs/HalvexPrefsTools.h"
#include "ui/Theme.h"

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <utility>

using namespace platform;
using extras::ClockItem;
using extras::tr;
namespace clock_format = extras::clock_format;

namespace {

// With the prefix "MenuClock" in the file.
constexpr const char* kFormatKey = "Format";
constexpr const char* kTwoLinesKey = "TwoLines";
constexpr const char* kDateFormatKey = "DateFormat";

constexpr std::int32_t kMiddleButton = 2;

/// The product's clock, with the user's locations. docs/preferences.md lists its preferences.
class HalvexTimeMenu final : public ClockItem {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (bundle)
            extras::bindTexts(*bundle);
        settings_ = menubar::preferencesOf(bundle);
        themeWatch_ = ui::onThemeChange([this] { applyTheme(); });
        worldClocks_.emplace([this] { locationsChanged(); });
        if (extras::WorldClocks::exist())
            title_.setLocations(worldClocks_->list());
        if (!ClockItem::initWithBundle(bundle))
            return nullptr;
        installView();
        addLocations();
        addTools();
        settingsWatch_ = settings_.onChange([this](const auto&) { reloadFormat(); });
        startTimer_ = timers().after({}, {}, [this] { worldClocks_->watchFiles(); });
        return shared_from_this();
    }

    void menuWillOpen() override {
        showLocations();
        warningsMenu_->menuWillOpen();
        ClockItem::menuWillOpen();
    }

    void willUnload() override {
        startTimer_.reset();
        settingsWatch_.reset();
        themeWatch_.reset();
        locationMenu_.reset();
        worldClockMenu_.reset();
        worldClocks_.reset();
        warningsMenu_.reset();
        convertPanel_.reset();
        ClockItem::willUnload();
    }

    /// Some window managers handle clicks with Alt, so a middle click does the same.
    bool clicked() override {
        if (eventSource().currentEvent().buttonNumber == kMiddleButton)
            return clickWithAltKey();
        setShowsUTC(false);
        return false;
    }
    bool clickWithAltKey() override {
        setShowsUTC(!title_.showsUTC);
        return true;
    }
    bool clickWithShiftKey() override {
        generalPasteboard().setString(title_.timeText(systemClock().now()));
        setShowsUTC(false);
        return true;
    }
    bool clickWithCtrlKey() override {
        setShowsUTC(false);
        HalvexPrefs(nullptr);
        return true;
    }

    /// The date and the ISO week, which the title may not show.
    std::string toolTip() const override {
        const std::tm moment = systemClock().localTime(systemClock().now());
        return clock_format::text(clock_format::fullDate(), moment) + '\n' +
               extras::fill(tr("Week %1"), {clock_format::text("%V", moment)});
    }

    void recalWidth() override {
        if (!clockView_)
            return ClockItem::recalWidth();
        const std::string text = appText_ ? appText_->string() : "";
        const double width = clockView_->hasColumns()
                                 ? clockView_->widthOfColumns()
                                 : clockView_->reservedWidth(text, clockLook().title);
        SetViewWidth(static_cast<float>(width) + 2.0F);
    }

    /// The pane also contains the calculator. Without it, only a running calculator can be shown.
    bool validateMenuItem(const MenuItem& item) override {
        if (&item != calculator_ && &item != preferences_)
            return !worldClockMenu_ || worldClockMenu_->isUsable(item);
        return HalvexPrefsTools::HalvexPrefsBundle() ||
               (&item == calculator_ && HalvexPrefsTools::findHalvexBGProcess(nullptr));
    }

  private:
    void installView() {
        clockView_ = std::make_shared<ClockView>();
        clockView_->initWithFrame(view_->frame(), this);
        view_ = clockView_;
        setView(view_);
        updateTitle(systemClock().now());
    }

    void addLocations() {
        menu_->addSeparator();
        worldClockMenu_.emplace(menu_, weak_from_this());
        locationMenu_.emplace(*menu_, weak_from_this());
    }

    /// Adds the entries that open something. Other tools of the clock belong here too.
    void addTools() {
        menu_->addSeparator();
        warningsMenu_.emplace(settings_, weak_from_this());
        menu_->addItem(warningsMenu_->item());
        menu_->addItem(
            tr("Convert…"), [this](MenuItem&) { convert(); }, weak_from_this());
        calculator_ = &menu_->addItem(
            tr("Calculator"), [this](MenuItem& sender) { OpenCalculator(&sender); },
            weak_from_this());
        preferences_ = &menu_->addItem(
            tr("Preferences…"), [this](MenuItem& sender) { HalvexPrefs(&sender); },
            weak_from_this());
    }

    void convert() {
        if (!convertPanel_)
            convertPanel_ = std::make_unique<ConvertPanel>(settings_);
        convertPanel_->show();
    }

    /// Brings the menu up to date with the list of locations.
    void showLocations() {
        if (!std::exchange(locationsChanged_, false))
            return;
        worldClockMenu_->setClocks(*worldClocks_);
        locationMenu_->setClocks(*worldClocks_);
    }

    void locationsChanged() {
        locationsChanged_ = true;
        if (isMenuOpen())
            showLocations();
        title_.setLocations(worldClocks_->list());
        refresh();
    }

    void applyTheme() {
        worldClockMenu_->reloadSymbols();
        reloadFormat();
        recalWidth();
        view_->setNeedsDisplay(true);
    }

    void setShowsUTC(bool shows) {
        if (std::exchange(title_.showsUTC, shows) != shows)
            updateTitle(systemClock().now());
    }

    std::string preferredFormat() override {
        const bool twoLines = settings_.boolean(kTwoLinesKey);
        title_.dateFormat = twoLines ? usableFormat(kDateFormatKey, clock_format::date()) : "";
        title_.format =
            usableFormat(kFormatKey, twoLines ? clock_format::time() : clock_format::longDefault());
        if (clockView_)
            clockView_->resetDigits();
        return title_.format;
    }

    std::string usableFormat(const char* key, const std::string& fallback) {
        const std::string format = settings_.string(key, fallback);
        if (clock_format::isUsable(format)) {
            refusedFormats_.erase(key);
            return clock_format::expanded(format);
        }
        if (std::exchange(refusedFormats_[key], format) != format)
            logLine("cannot use the clock format in %@: MenuClock%@ is not a usable format",
                    settings_.file(), key);
        return clock_format::expanded(fallback);
    }

    bool titleShowsSeconds() override { return title_.showsSeconds(); }

    void updateTitle(std::int64_t now) override {
        if (clockView_)
            clockView_->setColumns(title_.hasTwoLines() ? title_.columns(now)
                                                        : std::vector<TitleColumn>());
        showText(title_.text(now));
    }

    void showText(const std::string& text) {
        const TextAttributes attributes = clockLook().title;
        if (attributes == TextAttributes())
            return setTitle(text);
        const auto title = std::make_shared<AttributedString>(text, attributes);
        if (appText_ && *appText_ == *title)
            return;
        setAttributedTitle(title);
        view_->setNeedsDisplay(true);
    }

    void updateMenu(std::int64_t now) override {
        ClockItem::updateMenu(now);
        worldClockMenu_->update(now);
        warningsMenu_->update(now);
    }

    Preferences settings_;
    std::unique_ptr<Watch> settingsWatch_;
    std::unique_ptr<Watch> themeWatch_;
    std::map<std::string, std::string> refusedFormats_; // by key, logged
    std::unique_ptr<Watch> startTimer_;
    std::optional<extras::WorldClocks> worldClocks_; // until the item is unloaded, as the menus
    ClockTitle title_;
    std::shared_ptr<ClockView> clockView_;
    std::optional<WorldClockMenu> worldClockMenu_;
    std::optional<LocationMenu> locationMenu_;
    std::optional<WarningsMenu> warningsMenu_;
    std::unique_ptr<ConvertPanel> convertPanel_;
    bool locationsChanged_ = true; // since they were shown in the menu
    const MenuItem* calculator_ = nullptr;
    const MenuItem* preferences_ = nullptr;
};

} // namespace

HALVEX_MENU_EXTRA(HalvexTimeMenu)
