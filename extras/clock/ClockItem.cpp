#include "extras/clock/ClockItem.h"

#include "extras/clock/ClockFormat.h"
#include "platform/Pasteboard.h"

#include <utility>

using namespace platform;

namespace extras {
namespace {

void copyTitle(const MenuItem& item) {
    generalPasteboard().setString(item.title());
}

} // namespace

std::shared_ptr<MenuExtra> ClockItem::initWithBundle(std::shared_ptr<Bundle> bundle) {
    if (!HalvexMenuExtraBase::initWithBundle(std::move(bundle)))
        return nullptr;
    menu_ = std::make_shared<Menu>();
    dateItem_ = std::make_shared<MenuItem>("", copyTitle, weak_from_this());
    timeItem_ = std::make_shared<MenuItem>("", copyTitle, weak_from_this());
    menu_->addItem(dateItem_);
    menu_->addItem(timeItem_);
    reloadFormat();
    return shared_from_this();
}

void ClockItem::reloadFormat() {
    format_ = clock_format::expanded(preferredFormat());
    refresh();
}

void ClockItem::refresh() {
    scheduleTicks();
    updateTexts();
}

bool ClockItem::titleShowsSeconds() {
    return clock_format::showsSeconds(format_);
}

void ClockItem::scheduleTicks() {
    const bool everySecond = menuOpen_ || titleShowsSeconds();
    ticks_ = systemClock().tick(everySecond ? TickInterval::Second : TickInterval::Minute,
                                [this] { updateTexts(); });
}

void ClockItem::updateTexts() {
    const std::int64_t now = systemClock().now();
    updateTitle(now);
    if (menuOpen_)
        updateMenu(now);
}

void ClockItem::updateTitle(std::int64_t now) {
    setTitle(clock_format::text(format_, systemClock().localTime(now)));
}

void ClockItem::updateMenu(std::int64_t now) {
    const std::tm moment = systemClock().localTime(now);
    dateItem_->setTitle(clock_format::text(clock_format::fullDate(), moment));
    timeItem_->setTitle(clock_format::text(clock_format::fullTime(), moment));
}

void ClockItem::menuWillOpen() {
    menuOpen_ = true;
    refresh();
}

void ClockItem::menuDidClose() {
    menuOpen_ = false;
    scheduleTicks();
}

void ClockItem::willUnload() {
    ticks_.reset();
    HalvexMenuExtraBase::willUnload();
}

} // namespace extras
