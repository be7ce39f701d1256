#include "extras/HalvexTimeMenu/WarningsMenu.h"

#include "extras/shared/Texts.h"
#include "identifiers/ExportedIdentifiers.h"
#include "paths/ovxPaths.h"
#include "platform/Clock.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/TimeZones.h"
#include "platform/Timers.h"
#include "platform/base/PathStrings.h"
#include "prefs/HalvexPrefsTools.h"

#include <algorithm>
#include <utility>

using namespace platform;
using extras::fill;
using extras::tr;
using warnings::Warning;
using warnings::WarningTime;

namespace {

std::optional<std::int64_t> nextInstant(const Warning& warning) {
    return nextOccurrence(warning.time, warning.since, timeZones().local());
}

std::string nextText(const Warning& warning, std::int64_t now) {
    const auto next = nextInstant(warning);
    if (!next)
        return {};
    return warning.time.kind == WarningTime::Kind::Delay ? extras::shownTimeLeft(*next, now)
                                                         : extras::shownInstant(*next, now);
}

/// Returns the strings of a list that users can replace.
std::vector<std::string> listOf(const char* name) {
    const auto pane = HalvexPrefsTools::HalvexPrefsBundle();
    const auto shipped = pane ? pane->pathForResource(name, plistFile) : std::nullopt;
    std::vector<std::string> texts;
    for (const PropertyList& element :
         HalvexFilePaths::loadWarnMeTitles(name, shipped.value_or("")))
        if (element.string())
            texts.emplace_back(*element.string());
    return texts;
}

} // namespace

WarningsMenu::WarningsMenu(Preferences clockSettings, std::weak_ptr<MenuTarget> target,
                           std::function<void()> startKeeper)
    : target_(std::move(target)), startKeeper_(std::move(startKeeper)),
      texts_(std::move(clockSettings)), item_(std::make_shared<MenuItem>(tr("Warnings"))),
      menu_(std::make_shared<Menu>()), startTimer_(timers().after({}, {}, [this] { start(); })) {
    item_->setSubmenu(menu_);
}

WarningsMenu::~WarningsMenu() = default;

warnings::WarningStore& WarningsMenu::store() {
    if (!store_)
        store_ = std::make_unique<warnings::WarningStore>();
    return *store_;
}

void WarningsMenu::start() {
    if (fileManager().isFile(store().file()))
        keep();
}

void WarningsMenu::keep() {
    if (!keeper_)
        keeper_ = std::make_unique<warnings::WarningKeeper>(store(), texts_);
    if (!store().warnings().empty())
        startKeeper_();
}

void WarningsMenu::menuWillOpen() {
    start();
    readLists();
    rebuild();
}

/// Reads the lists at the first call, and again after the user's own have changed.
void WarningsMenu::readLists() {
    if (std::exchange(hasLists_, true))
        return;
    titles_ = listOf(WarnMeTitlesFile);
    times_.clear();
    for (const std::string& text : listOf(WarnMeTimesFile)) {
        if (const auto time = WarningTime::parse(text))
            times_.push_back(*time);
        else
            logLine("skipped \"%@\" in %@: it is not the time of a warning", text, WarnMeTimesFile);
    }
    if (!listWatches_.empty())
        return;
    for (const char* name : {WarnMeTimesFile, WarnMeTitlesFile})
        listWatches_.push_back(fileManager().watchFile(
            appendingPathComponent(HalvexFilePaths::ovxGetUsersHalvexProSupportDir(),
                                   appendingPathExtension(name, plistFile)),
            [this] { hasLists_ = false; }));
}

void WarningsMenu::rebuild() {
    shown_ = store().warnings();
    menu_->removeAllItems();
    if (hasFailed_)
        menu_->addItem(std::make_shared<MenuItem>(tr("Warnings cannot be saved")));
    addSet();
    addRestore();
    if (!menu_->items().empty())
        menu_->addSeparator();
    addTimes();
    update(systemClock().now());
}

/// Adds the warnings that are set, the next one first.
void WarningsMenu::addSet() {
    auto warnings = *shown_;
    std::ranges::stable_sort(warnings, {}, nextInstant);
    for (const Warning& warning : warnings) {
        addEntry(*menu_, extras::shownWarningName(warning), [this, warning] { clear({warning}); });
        MenuItem& row = *menu_->items().back();
        row.setIdentifier(warning.identifier);
        row.setState(MenuItem::State::On);
        row.setToolTip(tr("Choose to clear this warning"));
        if (warning.time.isRecurring() && !warning.title.empty())
            row.setSubtitle(extras::shownWarningTime(warning.time));
    }
    if (shown_->size() > 1)
        addEntry(*menu_, tr("Clear All"), [this] { clear(*shown_); });
}

void WarningsMenu::addRestore() {
    const auto warnings = restorable();
    if (warnings.empty())
        return;
    addEntry(*menu_,
             warnings.size() > 1
                 ? tr("Restore All")
                 : fill(tr("Restore “%1”"), {extras::shownWarningName(warnings.front())}),
             [this] { restore(); });
}

void WarningsMenu::addTimes() {
    menu_->addItem(MenuItem::sectionHeader(tr("New Warning")));
    for (const WarningTime& time : times_)
        menu_->addItem(std::make_shared<MenuItem>(extras::shownWarningTime(time)))
            .setSubmenu(titlesFor(time));
    addEntry(*menu_, tr("Other…"), [this] { showPanel(""); });
}

std::shared_ptr<Menu> WarningsMenu::titlesFor(const WarningTime& time) {
    auto menu = std::make_shared<Menu>();
    addEntry(*menu, tr("Without a title"), [this, time] { set("", time); });
    for (const std::string& title : titles_)
        addEntry(*menu, extras::shownWarningTitle(title),
                 [this, title, time] { set(title, time); });
    menu->addSeparator();
    addEntry(*menu, tr("Other…"), [this, time] { showPanel(time.text()); });
    return menu;
}

void WarningsMenu::addEntry(Menu& menu, const std::string& title, std::function<void()> action) {
    menu.addItem(
        title, [action = std::move(action)](MenuItem&) { action(); }, target_);
}

void WarningsMenu::update(std::int64_t now) {
    if (!shown_)
        return;
    if (*shown_ != store().warnings())
        return rebuild();
    const Warning* first = nullptr;
    for (const Warning& warning : *shown_) {
        if (const auto row = menu_->itemWithIdentifier(warning.identifier))
            row->setTrailingText(nextText(warning, now));
        if (!first || nextInstant(warning) < nextInstant(*first))
            first = &warning;
    }
    item_->setTrailingText(first ? nextText(*first, now) : "");
}

bool WarningsMenu::set(const std::string& title, const WarningTime& time) {
    hasFailed_ = !store().add(title, time, systemClock().now());
    if (hasFailed_)
        systemLog().beep();
    else
        keep();
    return !hasFailed_;
}

void WarningsMenu::clear(std::vector<Warning> warnings) {
    std::vector<std::string> identifiers;
    identifiers.reserve(warnings.size());
    for (const Warning& warning : warnings)
        identifiers.push_back(warning.identifier);
    hasFailed_ = !store().remove(identifiers);
    if (hasFailed_)
        return systemLog().beep();
    cleared_ = std::move(warnings);
}

/// Returns what was cleared last and would not have rung in the meantime.
std::vector<Warning> WarningsMenu::restorable() const {
    const std::int64_t now = systemClock().now();
    std::vector<Warning> result;
    for (Warning warning : cleared_) {
        if (warning.time.isRecurring())
            warning.since = now;
        if (nextInstant(warning) > now)
            result.push_back(std::move(warning));
    }
    return result;
}

void WarningsMenu::restore() {
    for (const Warning& warning : restorable())
        hasFailed_ = !store().add(warning) || hasFailed_;
    cleared_.clear();
    keep();
}

void WarningsMenu::showPanel(const std::string& time) {
    if (!panel_)
        panel_ = std::make_unique<WarningPanel>(
            [this](const std::string& title, const WarningTime& chosen) {
                return set(title, chosen);
            });
    panel_->show(time);
}
