#include "extras/HalvexDateCalMenu/CalendarEvents.h"
#include "extras/HalvexDateCalMenu/CalendarProgram.h"
#include "extras/HalvexDateCalMenu/CalendarSettings.h"
#include "extras/HalvexDateCalMenu/CopyFormats.h"
#include "extras/HalvexDateCalMenu/DayIcon.h"
#include "extras/HalvexDateCalMenu/MonthView.h"
#include "extras/calendar/CalendarTexts.h"
#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "menubar/ItemPreferences.h"
#include "paths/ovxPaths.h"
#include "platform/Appearance.h"
#include "platform/Applications.h"
#include "platform/Clock.h"
#include "platform/Pasteboard.h"
#include "platform/widgets/MenuExtraPlugIn.h"
#include "prefs/HalvexPrefsTools.h"
#include "ui/Theme.h"

#include <chrono>
#include <memory>
#include <optional>
#include <string>

using namespace platform;
using extras::fill;
using extras::tr;
using std::chrono::sys_days;
namespace clock_format = extras::clock_format;
namespace calendar_texts = extras::calendar_texts;

namespace {

sys_days dayOf(const std::tm& time) {
    return std::chrono::year(time.tm_year + 1900) / (time.tm_mon + 1) / time.tm_mday;
}

/// The date in the bar, as text or as an icon, and a calendar in its menu.
class HalvexDateCalMenu final : public HalvexMenuExtraBase {
  public:
    std::shared_ptr<MenuExtra> initWithBundle(std::shared_ptr<Bundle> bundle) override {
        if (!HalvexMenuExtraBase::initWithBundle(bundle))
            return nullptr;
        extras::bindTexts(*bundle);
        const Preferences preferences = menubar::preferencesOf(bundle);
        reader_ = std::make_unique<extras::CalendarSettingsReader>(preferences);
        themeWatch_ = ui::onThemeChange([this] { applyTheme(); });
        createMenu();
        applySettings();
        preferencesWatch_ = preferences.onChange([this](const auto&) { applySettings(); });
        appearanceWatch_ = appearance().onChange([this] { month_->updateStyle(); });
        return shared_from_this();
    }

    void menuWillOpen() override {
        if (!calendars_)
            calendars_ = std::make_unique<extras::EventCalendars>(
                HalvexFilePaths::ovxGetUsersHalvexProSupportDir() + "/Calendars");
        calendarsWatch_ = calendars_->onChange([this] { showEvents(); });
        month_->reset(today_);
        showBrokenFiles();
        showCopyTexts();
        showProgram();
    }

    void menuDidClose() override { calendarsWatch_.reset(); }

    void willUnload() override {
        ticks_.reset();
        preferencesWatch_.reset();
        appearanceWatch_.reset();
        themeWatch_.reset();
        calendarsWatch_.reset();
        HalvexMenuExtraBase::willUnload();
    }

    /// Copies today's date.
    bool clickWithShiftKey() override {
        copy(extras::formatted({today_, today_}, settings_.copyFormat));
        return true;
    }

    bool clickWithCtrlKey() override {
        HalvexPrefs(nullptr);
        return true;
    }

    bool validateMenuItem(const MenuItem& item) override {
        return (&item != program_ || foundProgram_) &&
               (&item != preferencesItem_ || HalvexPrefsTools::HalvexPrefsBundle());
    }

  private:
    static void copy(const std::string& text) { generalPasteboard().setString(text); }

    void createMenu() {
        month_ = std::make_shared<extras::MonthView>(extras::MonthView::Actions{
            .events =
                [this](sys_days first, sys_days last) {
                    return calendars_ ? calendars_->between(first, last)
                                      : std::vector<extras::CalendarEvent>();
                },
            .selectionChanged = [this] { showCopyTexts(); },
            .copy =
                [this] {
                    copy(extras::formatted(month_->selection().range(), settings_.copyFormat));
                },
            .open = [this](sys_days) { return openProgram(); }});
        menu_ = std::make_shared<Menu>();
        menu_->addItem(std::make_shared<MenuItem>(tr("Calendar")))
            .setView(month_, MenuItem::ViewStyle::FillsWidth);
        brokenFiles_ = &menu_->addItem("", {}, weak_from_this());
        menu_->addSeparator();
        copyMenu_ = std::make_shared<Menu>();
        menu_->addItem(std::make_shared<MenuItem>(tr("Copy Date"))).setSubmenu(copyMenu_);
        program_ = &menu_->addItem(
            "", [this](MenuItem&) { openProgram(); }, weak_from_this());
        menu_->addSeparator();
        preferencesItem_ = &menu_->addItem(
            tr("Preferences…"), [this](MenuItem& sender) { HalvexPrefs(&sender); },
            weak_from_this());
    }

    void applySettings() {
        settings_ = reader_->read();
        const bool showsSeconds = CheckForSecFormat(clock_format::bare(settings_.format)) &&
                                  settings_.title != extras::CalendarSettings::Title::Icon;
        ticks_ = systemClock().tick(showsSeconds ? TickInterval::Second : TickInterval::Minute,
                                    [this] { update(); });
        update();
        month_->configure({.rules = settings_.rules,
                           .weekNumbers = settings_.weekNumbers,
                           .months = settings_.months,
                           .rightToLeft = extras::isRightToLeft()});
    }

    void applyTheme() {
        iconDay_ = 0;
        update();
        month_->updateStyle();
    }

    void update() {
        using Title = extras::CalendarSettings::Title;
        const std::tm now = systemClock().localTime(systemClock().now());
        showToday(dayOf(now));
        showIcon(settings_.title == Title::Date ? 0 : now.tm_mday);
        setTitle(settings_.title == Title::Icon
                     ? std::nullopt
                     : std::optional(clock_format::text(settings_.format, now)));
    }

    void showToday(sys_days today) {
        if (std::exchange(today_, today) == today)
            return;
        month_->setToday(today);
        const std::string date = calendar_texts::longDate(today);
        setToolTip(date);
        setAccessibleTexts({.value = date});
    }

    /// Shows a day of the month in the icon, or removes the icon if @p day is 0.
    void showIcon(int day) {
        if (std::exchange(iconDay_, day) == day)
            return;
        setImage(day == 0 ? nullptr
                          : extras::dayIcon(day, ui::currentTheme()->color("CalendarIcon")));
        view_->setNeedsDisplay(true);
    }

    void showEvents() {
        month_->reloadEvents();
        showBrokenFiles();
    }

    void showBrokenFiles() {
        std::string names;
        for (const std::string& name : calendars_->brokenFiles())
            names += (names.empty() ? "" : ", ") + name;
        brokenFiles_->setTitle(fill(tr("Cannot read %1"), {names}));
        brokenFiles_->setHidden(names.empty());
    }

    void showCopyTexts() {
        copyMenu_->removeAllItems();
        for (const std::string& text : extras::copyTexts(month_->selection().range()))
            copyMenu_->addItem(
                text, [](const MenuItem& item) { copy(item.title()); }, weak_from_this());
    }

    void showProgram() {
        foundProgram_ = extras::calendarProgram(settings_.program);
        program_->setTitle(foundProgram_ ? fill(tr("Open %1"), {foundProgram_->name})
                                         : tr("No calendar program is installed"));
    }

    /// Returns why the program cannot be started, or an empty text.
    std::string openProgram() const {
        if (!foundProgram_)
            return tr("No calendar program is installed");
        if (!applications().launch(foundProgram_->identifier))
            return fill(tr("Cannot open %1"), {foundProgram_->name});
        return {};
    }

    extras::CalendarSettings settings_;
    std::unique_ptr<extras::CalendarSettingsReader> reader_;
    std::unique_ptr<Watch> preferencesWatch_;
    std::unique_ptr<Watch> appearanceWatch_;
    std::unique_ptr<Watch> themeWatch_;
    std::unique_ptr<Watch> ticks_;
    sys_days today_ = sys_days::min();
    int iconDay_ = 0; ///< 0 if the icon is not shown

    std::unique_ptr<extras::EventCalendars> calendars_; ///< null until the menu opens
    std::unique_ptr<Watch> calendarsWatch_;             ///< while the menu is open
    std::optional<extras::CalendarProgram> foundProgram_;
    std::shared_ptr<extras::MonthView> month_;
    std::shared_ptr<Menu> copyMenu_;
    MenuItem* brokenFiles_ = nullptr;
    MenuItem* program_ = nullptr;
    const MenuItem* preferencesItem_ = nullptr;
};

} // namespace

HALVEX_MENU_EXTRA(HalvexDateCalMenu)
