#include "extras/HalvexTimeMenu/WorldClockMenu.h"

#include "extras/HalvexTimeMenu/DaySymbols.h"
#include "extras/HalvexTimeMenu/GroupedMenu.h"
#include "extras/clock/ClockFormat.h"
#include "extras/shared/Sun.h"
#include "extras/shared/Texts.h"
#include "platform/Clock.h"
#include "platform/Pasteboard.h"
#include "platform/TimeZones.h"
#include "platform/Timers.h"
#include "ui/Theme.h"

#include <algorithm>
#include <utility>

using namespace platform;
using extras::fill;
using extras::tr;
using extras::WorldClock;

namespace {

constexpr std::size_t kMostInMenu = 12; // fits on a screen of 768 pixels

/// Returns a time at the place, without seconds.
std::string placeTime(const ZoneRules& zone, std::int64_t instant) {
    const auto moment = zone.brokenDownTime(instant);
    return moment ? extras::clock_format::text(extras::clock_format::time(), *moment) : "";
}

std::string sunText(const WorldClock& clock, const ZoneRules& zone, std::int64_t now) {
    CivilTime noon = zone.localTime(now);
    noon.hour = 12;
    noon.minute = noon.second = 0;
    const auto instants = zone.instantsOf(noon);
    if (!clock.coordinates || !instants)
        return {};
    const extras::sun::Day day = extras::sun::dayAround(*clock.coordinates, instants->first);
    switch (day.course) {
    case extras::sun::Course::UpAllDay:
        return tr("The sun does not set today");
    case extras::sun::Course::DownAllDay:
        return tr("The sun does not rise today");
    case extras::sun::Course::RisesAndSets:
        break;
    }
    return fill(tr("Sunrise %1, sunset %2"),
                {placeTime(zone, day.sunrise), placeTime(zone, day.sunset)});
}

std::string toolTip(const WorldClock& clock, std::int64_t now) {
    const auto zone = timeZones().zone(clock.zoneName);
    if (!zone)
        return {};
    const std::string sun = sunText(clock, *zone, now);
    const std::string name = clock.zoneName + " (" + zone->offsetAt(now).abbreviation + ")";
    return sun.empty() ? name : sun + '\n' + name;
}

void copyTime(const WorldClock& clock) {
    if (const auto time = extras::worldTime(clock, systemClock().now()))
        generalPasteboard().setString(clock.name + ", " + extras::timeWithDay(*time));
}

} // namespace

WorldClockMenu::WorldClockMenu(std::shared_ptr<Menu> menu, std::weak_ptr<MenuTarget> target)
    : menu_(std::move(menu)), target_(std::move(target)),
      header_(MenuItem::sectionHeader(tr("World Clock"))) {
    menu_->addItem(header_);
}

std::shared_ptr<MenuItem> WorldClockMenu::makeItem(const WorldClock& clock) {
    return std::make_shared<MenuItem>(
        clock.name, [clock](MenuItem&) { copyTime(clock); }, target_);
}

void WorldClockMenu::insert(const std::shared_ptr<MenuItem>& item) {
    menu_->insertItem(item, *menu_->indexOfItem(*header_) + 1 + entries_.size());
    entries_.push_back(item);
}

void WorldClockMenu::setClocks(extras::WorldClocks& clocks) {
    for (const auto& entry : std::exchange(entries_, {}))
        menu_->removeItem(*entry);
    rows_.clear();
    unusable_.clear();
    othersTimer_.reset();
    shown_.reset();
    if (!clocks.error().empty())
        insert(std::make_shared<MenuItem>(tr("The list of locations cannot be read")));
    if (!blank_)
        blank_ = blankSymbol();
    std::vector<std::shared_ptr<MenuItem>> others;
    for (const WorldClock& clock : clocks.list()) {
        rows_.push_back({clock, makeItem(clock)});
        rows_.back().item->setImage(blank_); // so that the names line up
        if (rows_.size() <= kMostInMenu)
            insert(rows_.back().item);
        else
            others.push_back(rows_.back().item);
    }
    if (others.empty())
        return;
    const auto submenu = std::make_shared<Menu>();
    appendGrouped(*submenu, others);
    insert(std::make_shared<MenuItem>(tr("More Locations")));
    entries_.back()->setSubmenu(submenu);
}

void WorldClockMenu::update(std::int64_t now) {
    const Moment moment{now / 60, timeZones().local().offsetAt(now).secondsFromUTC};
    if (std::exchange(shown_, moment) == moment)
        return;
    const std::size_t direct = std::min(rows_.size(), kMostInMenu);
    for (std::size_t i = 0; i < direct; ++i)
        updateRow(rows_[i], now);
    if (rows_.size() > direct)
        othersTimer_ = timers().after({}, {}, [this, now] { updateOthers(now); });
}

/// Their zones may have to be read from hundreds of files.
void WorldClockMenu::updateOthers(std::int64_t now) {
    for (std::size_t i = kMostInMenu; i < rows_.size(); ++i)
        updateRow(rows_[i], now);
}

void WorldClockMenu::updateRow(const Row& row, std::int64_t now) {
    const auto time = extras::worldTime(row.clock, now);
    if (!time) {
        unusable_.insert(row.item.get());
        row.item->setTrailingText(tr("no usable time zone"));
        return;
    }
    unusable_.erase(row.item.get());
    const std::string days = extras::dayDifferenceText(time->dayDifference);
    row.item->setTrailingText(days.empty() ? time->time : days + "  " + time->time);
    row.item->setSubtitle(extras::offsetText(time->secondsAhead));
    row.item->setToolTip(toolTip(row.clock, now));
    if (time->isDay)
        row.item->setImage(symbol(*time->isDay));
}

void WorldClockMenu::reloadSymbols() {
    sun_.reset();
    moon_.reset();
    shown_.reset();
}

const std::shared_ptr<Image>& WorldClockMenu::symbol(bool isDay) {
    std::shared_ptr<Image>& image = isDay ? sun_ : moon_;
    if (!image)
        image = ui::currentTheme()->icon(isDay ? "Day" : "Night");
    if (!image)
        image = isDay ? sunSymbol() : moonSymbol();
    return image;
}
