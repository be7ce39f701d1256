#include "apps/menubar/MenuTracker.h"

#include "apps/menubar/CrashJournal.h"
#include "apps/menubar/ItemCollection.h"
#include "platform/qt/QtMenu.h"
#include "platform/runtime/Guard.h"

#include <QApplication>
#include <QMouseEvent>
#include <QTimer>

#include <algorithm>
#include <cstddef>
#include <utility>

using namespace platform;

namespace apps {
namespace {

bool hasMenu(const Item& item) {
    bool result = false;
    runGuarded(item.identifier(), [&] { result = item.extra().menu() != nullptr; });
    return result;
}

bool isUnder(const Item& item, QPoint globalPosition) {
    const ItemWidget& widget = *item.widget;
    return widget.isVisible() && widget.rect().contains(widget.mapFromGlobal(globalPosition));
}

} // namespace

MenuTracker::MenuTracker(ItemCollection& items, CrashJournal& journal)
    : items_(items), journal_(journal) {
    connect(&items, &ItemCollection::aboutToRemove, this, &MenuTracker::close);
}

MenuTracker::~MenuTracker() = default;

void MenuTracker::toggle(Item& item) {
    if (item.extra().isMenuDown())
        close(item);
    else
        open(item);
}

bool MenuTracker::open(Item& item) {
    closeOpenMenu();
    const CrashJournal::Scope step(journal_, "menu", item.identifier());
    MenuExtra& extra = item.extra();
    std::unique_ptr<qt::QtMenu> menu;
    runGuarded(item.identifier(), [&] {
        extra.menuWillOpen();
        if (auto model = extra.menu())
            menu = std::make_unique<qt::QtMenu>(std::move(model), item.identifier());
    });
    if (!menu || menu->isEmpty()) {
        runGuarded(item.identifier(), [&] { extra.menuDidClose(); });
        return false;
    }
    connect(menu.get(), &QMenu::aboutToHide, this, [this, &extra] { menuClosed(extra); });
    connect(menu.get(), &qt::QtMenu::neighbourRequested, this,
            [this, &extra](int direction) { switchToNeighbour(extra, direction); });
    menu->setOutsideMouseHandler([this](const QMouseEvent& event) { return handleMouse(event); });
    extra.setMenuDown(true);
    item.widget->update();
    menus_.push_back({&extra, std::move(menu)});
    menus_.back().menu->popupBelow(QRect(item.widget->mapToGlobal(QPoint()), item.widget->size()));
    return true;
}

void MenuTracker::close(Item& item) {
    if (item.extra().isMenuDown())
        closeOpenMenu();
    std::erase_if(menus_,
                  [&](const TrackedMenu& tracked) { return tracked.owner == &item.extra(); });
}

void MenuTracker::menuClosed(MenuExtra& extra) {
    if (!extra.isMenuDown())
        return;
    extra.setMenuDown(false);
    if (const Item* item = items_.find(extra)) {
        item->widget->update();
        runGuarded(item->identifier(), [&] { extra.menuDidClose(); });
    }
    emit closed();
    QTimer::singleShot(0, this, [this] {
        std::erase_if(menus_,
                      [](const TrackedMenu& tracked) { return !tracked.menu->isVisible(); });
    });
}

/// Handles a mouse event outside the open menu. A press over an item closes the menu and, unless
/// the menu is the item's own, is passed to the item. A move over an item that has a menu opens
/// that menu instead.
bool MenuTracker::handleMouse(const QMouseEvent& event) {
    const QPoint position = event.globalPosition().toPoint();
    const auto item = std::find_if(items_.begin(), items_.end(),
                                   [&](const Item& other) { return isUnder(other, position); });
    if (item == items_.end())
        return false;
    const bool isOwner = item->extra().isMenuDown();
    if (event.type() == QEvent::MouseMove) {
        if (isOwner || !hasMenu(*item))
            return false;
        switchTo(*item);
        return true;
    }
    closeOpenMenu();
    if (!isOwner)
        item->widget->press(event);
    return true;
}

void MenuTracker::switchToNeighbour(MenuExtra& extra, int direction) {
    if (!extra.isMenuDown())
        return; // a quick second key press: the menu is already being switched
    if (neighbourHandler_ && neighbourHandler_(direction))
        return;
    std::vector<const Item*> withMenu; // beginning at the edge of the screen
    for (const Item& item : items_) {
        if (&item.extra() == &extra || hasMenu(item))
            withMenu.push_back(&item);
    }
    const auto current = std::find(withMenu.begin(), withMenu.end(), items_.find(extra));
    const auto count = static_cast<std::ptrdiff_t>(withMenu.size());
    const int step = QApplication::isRightToLeft() ? direction : -direction;
    const std::ptrdiff_t index = (current - withMenu.begin() + step + count) % count;
    const Item& neighbour = *withMenu[static_cast<std::size_t>(index)];
    if (&neighbour.extra() != &extra)
        switchTo(neighbour);
}

void MenuTracker::switchTo(const Item& item) {
    closeOpenMenu();
    QTimer::singleShot(0, this, [this, identifier = item.identifier()] {
        if (Item* next = items_.find(identifier))
            open(*next);
    });
}

qt::QtMenu* MenuTracker::openMenu() const {
    const auto found = std::find_if(menus_.begin(), menus_.end(), [](const TrackedMenu& tracked) {
        return tracked.owner->isMenuDown();
    });
    return found == menus_.end() ? nullptr : found->menu.get();
}

void MenuTracker::closeOpenMenu() {
    if (qt::QtMenu* menu = openMenu())
        menu->close();
}

} // namespace apps
