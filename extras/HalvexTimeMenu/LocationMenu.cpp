#include "extras/HalvexTimeMenu/LocationMenu.h"

#include "extras/HalvexTimeMenu/GroupedMenu.h"
#include "extras/clock/LocationEditing.h"
#include "extras/shared/Texts.h"
#include "platform/Timers.h"

#include <algorithm>
#include <array>
#include <utility>

using namespace platform;
using extras::tr;
using paths::WorldLocation;
namespace locations = extras::locations;

namespace {

using Items = std::vector<std::shared_ptr<MenuItem>>;

struct Region {
    std::string_view prefix; ///< of its zones in the tz database
    const char* name;
};

std::array<Region, 9> regions() {
    return {{{"Africa/", tr("Africa")},
             {"America/", tr("America")},
             {"Antarctica/", tr("Antarctica")},
             {"Asia/", tr("Asia")},
             {"Atlantic/", tr("Atlantic Ocean")},
             {"Australia/", tr("Australia")},
             {"Europe/", tr("Europe")},
             {"Indian/", tr("Indian Ocean")},
             {"Pacific/", tr("Pacific Ocean")}}};
}

/// Makes @p items the submenu of @p entry, and hides the entry if there are none.
void setItems(MenuItem& entry, const Items& items) {
    const auto submenu = std::make_shared<Menu>();
    appendGrouped(*submenu, items);
    entry.setSubmenu(submenu);
    entry.setHidden(items.empty());
}

void toggleInBar(const WorldLocation& location) {
    WorldLocation changed = location;
    changed.setInBar(!location.isInBar());
    locations::replace(location, changed);
}

} // namespace

LocationMenu::LocationMenu(Menu& menu, std::weak_ptr<MenuTarget> target)
    : target_(std::move(target)), entry_(std::make_shared<MenuItem>("")),
      inBar_(std::make_shared<MenuItem>(tr("Show in the Bar"))),
      remove_(std::make_shared<MenuItem>(tr("Remove"))) {
    const auto add = std::make_shared<MenuItem>(tr("Add"));
    add->setSubmenu(cities_);
    for (const auto& entry : {inBar_, add, remove_})
        edit_->addItem(entry);
    menu.addItem(entry_);
}

void LocationMenu::setClocks(extras::WorldClocks& clocks) {
    const bool isEmpty = clocks.records().empty();
    entry_->setTitle(isEmpty ? tr("Add Location") : tr("Edit Locations"));
    entry_->setSubmenu(isEmpty ? cities_ : edit_);
    timer_ = timers().after({}, {}, [this, &clocks] {
        showInBar(clocks.records());
        showRemovable(clocks.records());
        if (!std::exchange(hasCities_, true))
            showCities();
    });
}

void LocationMenu::showInBar(const std::vector<WorldLocation>& records) {
    Items items;
    for (const WorldLocation& location : records) {
        const auto toggle = [location](MenuItem&) { toggleInBar(location); };
        items.push_back(std::make_shared<MenuItem>(location.displayName(), toggle, target_));
        if (location.isInBar())
            items.back()->setState(MenuItem::State::On);
    }
    setItems(*inBar_, items);
}

void LocationMenu::showRemovable(const std::vector<WorldLocation>& records) {
    Items items;
    for (const WorldLocation& location : records)
        items.push_back(std::make_shared<MenuItem>(
            location.displayName(), [location](MenuItem&) { locations::remove(location); },
            target_));
    setItems(*remove_, items);
}

void LocationMenu::showCities() {
    const std::vector<WorldLocation> cities = locations::knownLocations();
    for (const auto& [prefix, name] : regions()) {
        Items items;
        for (const WorldLocation& city : cities) {
            if (!city.zoneName().starts_with(prefix))
                continue;
            items.push_back(std::make_shared<MenuItem>(
                city.city(), [city](MenuItem&) { locations::add(city); }, target_));
            items.back()->setTrailingText(city.country());
        }
        setItems(cities_->addItem(std::make_shared<MenuItem>(name)), items);
    }
}
