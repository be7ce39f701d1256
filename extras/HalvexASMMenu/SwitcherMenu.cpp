#include "extras/HalvexASMMenu/SwitcherMenu.h"

#include "extras/HalvexASMMenu/MenuContents.h"
#include "extras/HalvexASMMenu/SwitcherTitle.h"
#include "extras/shared/Texts.h"
#include "platform/values/Event.h"

#include <algorithm>
#include <set>
#include <utility>

using namespace platform;
using extras::fill;
using extras::tr;

namespace switcher {
namespace {

constexpr double kSubtitleWidth = 240; // points
constexpr double kWindowTitleWidth = 360;

const RunningApplication* find(const std::vector<RunningApplication>& running,
                               const std::string& identifier) {
    const auto found = std::ranges::find(running, identifier, &RunningApplication::identifier);
    return found == running.end() ? nullptr : &*found;
}

const RunningApplication* activeOf(const std::vector<RunningApplication>& running) {
    const auto found = std::ranges::find(running, true, &RunningApplication::isActive);
    return found == running.end() ? nullptr : &*found;
}

std::string nameOf(const RunningApplication& application) {
    return application.name.empty() ? tr("Untitled") : application.name;
}

/// The title of the most recently used window that has one, or an empty text.
std::string windowTitle(const RunningApplication& application) {
    for (const ApplicationWindow& window : application.windows)
        if (!window.title.empty())
            return shortened(window.title, kSubtitleWidth);
    return {};
}

/// What tells @p application apart from others with its name: the title of a window or, if they
/// share that as well, its identifier. Empty if no other application has its name.
std::string distinction(const std::vector<RunningApplication>& running,
                        const RunningApplication& application) {
    std::string result;
    for (const RunningApplication& other : running) {
        if (&other == &application || nameOf(other) != nameOf(application))
            continue;
        result = windowTitle(application);
        if (result.empty() || result == windowTitle(other))
            return application.identifier;
    }
    return result;
}

bool needsAttention(const RunningApplication& application) {
    return std::ranges::any_of(application.windows, &ApplicationWindow::needsAttention);
}

MenuItem::State stateOf(bool isActive) {
    return isActive ? MenuItem::State::On : MenuItem::State::Off;
}

/// Brings an application to the front, with all of its windows if they were hidden.
void activate(const std::string& identifier) {
    const auto running = applications().running();
    const RunningApplication* const application = find(running, identifier);
    if (application && application->isHidden)
        applications().show(identifier);
    applications().activate(identifier);
}

void activateAlone(const std::string& identifier) {
    activate(identifier);
    applications().hideOthers(identifier);
}

void hideOthersThanActive() {
    const auto running = applications().running();
    if (const RunningApplication* const active = activeOf(running))
        applications().hideOthers(active->identifier);
}

void showAll() {
    for (const RunningApplication& application : applications().running())
        if (application.isHidden)
            applications().show(application.identifier);
}

} // namespace

SwitcherMenu::SwitcherMenu(Favourites& favourites, std::weak_ptr<MenuTarget> target)
    : favourites_(favourites), target_(std::move(target)) {
    notice_ = std::make_shared<MenuItem>("");
    favouritesHeader_ = MenuItem::sectionHeader(tr("Favourites"));
    addFavourite_ = entry([this](MenuItem&) { favourites_.add(active_); });
    removeFavourite_ = entry([this](MenuItem&) { favourites_.remove(active_); });
    hideOthers_ = entry([](MenuItem&) { hideOthersThanActive(); });
    hideOthers_->setTitle(tr("Hide Others"));
    showAll_ = entry([](MenuItem&) { showAll(); });
    showAll_->setTitle(tr("Show All"));
}

/// Never null, so that all names line up.
std::shared_ptr<Image> SwitcherMenu::iconOf(const std::string& identifier) {
    if (auto icon = applications().icon(identifier, kIconSide))
        return icon;
    if (!plainIcon_)
        plainIcon_ = emptyIcon();
    return plainIcon_;
}

SwitcherMenu::Item SwitcherMenu::entry(MenuItem::Action action) const {
    return std::make_shared<MenuItem>("", std::move(action), target_);
}

SwitcherMenu::Item SwitcherMenu::alternate(std::uint32_t modifiers, MenuItem::Action action) const {
    Item item = entry(std::move(action));
    item->setAlternateModifiers(modifiers);
    return item;
}

SwitcherMenu::ApplicationRow SwitcherMenu::makeRow(const std::string& identifier) const {
    return {
        .activate = entry([identifier](MenuItem&) { switcher::activate(identifier); }),
        .showOnly =
            alternate(kOptionKeyMask, [identifier](MenuItem&) { activateAlone(identifier); }),
        .quit = alternate(kControlKeyMask,
                          [identifier](MenuItem&) { applications().quit(identifier); }),
    };
}

SwitcherMenu::FavouriteRow SwitcherMenu::makeFavouriteRow(const std::string& identifier) {
    return {
        .launch = entry([identifier](MenuItem&) { applications().launch(identifier); }),
        .remove = alternate(kControlKeyMask,
                            [this, identifier](MenuItem&) { favourites_.remove(identifier); }),
    };
}

SwitcherMenu::Item SwitcherMenu::makeWindowItem(std::uint64_t window) const {
    return entry([window](MenuItem&) { applications().activateWindow(window); });
}

void SwitcherMenu::refill() {
    order_.clear();
    update();
}

void SwitcherMenu::update() {
    const Running running = applications().running();
    arrange(running);
    std::vector<Item> items;
    addApplications(items, running);
    addFavourites(items, running);
    addCommands(items, running);
    setContents(*menu_, items);
}

/// Gives each running application a row and a place.
void SwitcherMenu::arrange(const Running& running) {
    const auto isGone = [&](const std::string& identifier) { return !find(running, identifier); };
    std::erase_if(order_, isGone);
    std::erase_if(rows_, [&](const auto& row) { return isGone(row.first); });
    for (const RunningApplication& application : running) {
        const std::string& identifier = application.identifier;
        if (std::ranges::find(order_, identifier) == order_.end())
            order_.push_back(identifier);
        if (!rows_.contains(identifier))
            rows_.emplace(identifier, makeRow(identifier));
    }
}

void SwitcherMenu::addApplications(std::vector<Item>& items, const Running& running) {
    for (const std::string& identifier : order_) {
        const RunningApplication& application = *find(running, identifier);
        show(application, distinction(running, application));
        const ApplicationRow& row = rows_.at(identifier);
        items.insert(items.end(), {row.activate, row.showOnly, row.quit});
    }
    if (!running.empty())
        return;
    notice_->setTitle(applications().providesList()
                          ? tr("No open windows")
                          : tr("This desktop does not list its applications"));
    items.push_back(notice_);
}

void SwitcherMenu::show(const RunningApplication& application, const std::string& subtitle) {
    ApplicationRow& row = rows_.at(application.identifier);
    const std::string name = nameOf(application);
    row.activate->setTitle(name);
    row.showOnly->setTitle(fill(tr("Show Only %1"), {name}));
    row.quit->setTitle(fill(tr("Quit %1"), {name}));
    const auto icon = iconOf(application.identifier);
    for (const Item& item : {row.activate, row.showOnly, row.quit}) {
        item->setImage(icon);
        item->setSubtitle(subtitle);
        item->setState(stateOf(application.isActive));
    }
    row.activate->setTrailingText(needsAttention(application) ? tr("needs attention")
                                  : application.isHidden      ? tr("hidden")
                                                              : "");
    showWindows(row, application);
}

void SwitcherMenu::showWindows(ApplicationRow& row, const RunningApplication& application) const {
    const bool hasSeveral = application.windows.size() > 1;
    std::vector<Item> items;
    std::set<std::uint64_t> present;
    for (const ApplicationWindow& window : application.windows) {
        if (!hasSeveral)
            break;
        present.insert(window.identifier);
        Item& item = row.windowItems[window.identifier];
        if (!item)
            item = makeWindowItem(window.identifier);
        const std::string title = shortened(window.title, kWindowTitleWidth);
        item->setTitle(title.empty() ? tr("Untitled") : title);
        item->setToolTip(title == window.title ? "" : window.title);
        item->setState(stateOf(window.isActive));
        item->setTrailingText(window.needsAttention ? tr("needs attention")
                              : window.isMinimised  ? tr("minimised")
                                                    : "");
        items.push_back(item);
    }
    std::erase_if(row.windowItems, [&](const auto& item) { return !present.contains(item.first); });
    setContents(*row.windows, items);
    row.activate->setSubmenu(hasSeveral ? row.windows : nullptr);
}

/// Adds the favourites that are not running; the others are in the list above.
void SwitcherMenu::addFavourites(std::vector<Item>& items, const Running& running) {
    std::vector<Item> rows;
    std::map<std::string, FavouriteRow> shown;
    for (const DesktopEntry& entry : favourites_.installed()) {
        if (find(running, entry.identifier))
            continue;
        const auto known = favouriteRows_.find(entry.identifier);
        const FavouriteRow row =
            known == favouriteRows_.end() ? makeFavouriteRow(entry.identifier) : known->second;
        row.launch->setTitle(entry.name);
        row.launch->setToolTip(entry.comment);
        row.remove->setTitle(fill(tr("Remove %1 from Favourites"), {entry.name}));
        const auto icon = iconOf(entry.identifier);
        for (const Item& item : {row.launch, row.remove}) {
            item->setImage(icon);
            rows.push_back(item);
        }
        shown.emplace(entry.identifier, row);
    }
    favouriteRows_ = std::move(shown);
    if (rows.empty())
        return;
    items.insert(items.end(), {favouritesSeparator_, favouritesHeader_});
    items.insert(items.end(), rows.begin(), rows.end());
}

void SwitcherMenu::addCommands(std::vector<Item>& items, const Running& running) {
    std::vector<Item> commands;
    const RunningApplication* const active = activeOf(running);
    active_ = active && active->hasDesktopEntry ? active->identifier : "";
    if (!active_.empty()) {
        const bool isFavourite = favourites_.contains(active_);
        const Item& item = isFavourite ? removeFavourite_ : addFavourite_;
        item->setTitle(
            fill(isFavourite ? tr("Remove %1 from Favourites") : tr("Add %1 to Favourites"),
                 {active->name}));
        commands.push_back(item);
    }
    const auto hidden = std::ranges::count(running, true, &RunningApplication::isHidden);
    if (active && std::ssize(running) - hidden > 1)
        commands.push_back(hideOthers_);
    if (hidden > 0)
        commands.push_back(showAll_);
    if (commands.empty())
        return;
    items.push_back(commandsSeparator_);
    items.insert(items.end(), commands.begin(), commands.end());
}

} // namespace switcher
