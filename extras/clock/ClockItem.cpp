#include "extras/clock/ClockItem.h"

#include "extras/clock/ClockFormat.h"
#include "platform/Pasteboard.h"

#include <utility>

using namespace platform;
using clock_format::bare;
using clock_format::expanded;

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
    restart();
    return shared_from_this();
}

void ClockItem::restart() {
    format_ = expanded(preferredFormat());
    keepTicking();
    showTime();
}

void ClockItem::keepTicking() {
    const bool seconds = menuOpen_ || CheckForSecFormat(expanded(bare(format_)));
    ticks_ = systemClock().tick(seconds ? TickInterval::Second : TickInterval::Minute,
                                [this] { showTime(); });
}

void ClockItem::showTime() {
    const std::tm moment = systemClock().localTime(systemClock().now());
    setTitle(clock_format::text(format_, moment));
    if (!menuOpen_)
        return;
    dateItem_->setTitle(clock_format::text(clock_format::fullDate(), moment));
    timeItem_->setTitle(clock_format::text(clock_format::fullTime(), moment));
}

void ClockItem::menuWillOpen() {
    menuOpen_ = true;
    keepTicking();
    showTime();
}

void ClockItem::menuDidClose() {
    menuOpen_ = false;
    keepTicking();
}

void ClockItem::willUnload() {
    ticks_.reset();
    HalvexMenuExtraBase::willUnload();
}
