#include "apps/menubar/MenuBar.h"

#include "apps/menubar/BarLook.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#include "platform/Workspace.h"
#include "platform/qt/Modifiers.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/Strings.h"
#include "platform/runtime/Guard.h"

#include <QAbstractEventDispatcher>
#include <QFileInfo>
#include <QGuiApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QSaveFile>
#include <QTimer>

#include <algorithm>
#include <utility>

using namespace platform;
using platform::qt::qString;

namespace apps {
namespace {

bool hasMenu(const LoadedItem& item) {
    bool has = false;
    runGuarded(item.identifier, [&] { has = item.extra->menu() != nullptr; });
    return has;
}

} // namespace

MenuBar::MenuBar(qt::QtGraphics& graphics, StepJournal& journal)
    : graphics_(graphics), journal_(journal), asHost_(*this), asEvents_(*this) {
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &MenuBar::displayIfNeeded);
}

MenuBar::~MenuBar() {
    unloadAll();
}

void MenuBar::unloadAll() {
    while (!items_.empty())
        remove(items_.back().reference);
}

void MenuBar::show() {
    window_.show();
}

// Items come and go.

MenuExtraStatus MenuBar::add(const std::string& path, std::int32_t position, Origin origin) {
    const JudgedBundle judged = judgeBundle(path);
    if (!judged) {
        logLine("menu extra at %@ refused: %@", path, judged.reason);
        return MenuExtraStatus::Refused;
    }
    if (itemWith(judged.identifier)) {
        logLine("menu extra %@ is loaded already", judged.identifier);
        return MenuExtraStatus::NoError;
    }
    const ItemRecord record{judged.identifier, path, position,
                            judged.bundle->version().value_or(""), origin};
    LoadedItem loadedItem;
    {
        const StepJournal::Scope step(journal_, {"loading", record});
        loadedItem = loadItem(judged);
    }
    if (!loadedItem)
        return MenuExtraStatus::Refused;
    Item item{++lastReference_, record, std::move(loadedItem), false, nullptr};
    const auto place = std::find_if(items_.begin(), items_.end(), [&](const Item& other) {
        return other.record.position > position;
    });
    journal_.add(record);
    show(*items_.insert(place, std::move(item)));
    emit loaded(qString(judged.identifier));
    return MenuExtraStatus::NoError;
}

void MenuBar::show(Item& item) {
    item.widget = std::make_unique<ItemWidget>(item.loaded.identifier, item.loaded.extra, graphics_,
                                               &window_);
    connect(item.widget.get(), &ItemWidget::pressed, this,
            [this, &item](const Event& event) { send(item, event); });
    connect(item.widget.get(), &ItemWidget::drawing, this,
            [this, &item] { noteFirstDrawing(item); });
    connect(item.widget.get(), &ItemWidget::drawn, this, [this, &item] { noteDrawn(item); });
    placeItems();
}

void MenuBar::noteFirstDrawing(Item& item) {
    if (!item.wasDrawn)
        journal_.begin({"first drawing", item.record});
}

void MenuBar::noteDrawn(Item& item) {
    if (!std::exchange(item.wasDrawn, true))
        journal_.end();
    item.loaded.extra->view()->didDisplay();
}

MenuExtraStatus MenuBar::remove(std::uint32_t reference) {
    const auto found = std::find_if(items_.begin(), items_.end(),
                                    [&](const Item& item) { return item.reference == reference; });
    if (found == items_.end()) {
        logLine("no menu extra has the reference %d", reference);
        return MenuExtraStatus::NotLoaded;
    }
    const QString identifier = qString(found->loaded.identifier);
    closeMenuOf(*found);
    runGuarded(found->loaded.identifier, [&] { found->loaded.extra->willUnload(); });
    std::list<Item> leaving;
    leaving.splice(leaving.end(), items_, found);
    unload(std::move(leaving.front().loaded), std::move(leaving.front().widget));
    journal_.remove(leaving.front().record.identifier);
    placeItems();
    emit unloaded(identifier);
    return MenuExtraStatus::NoError;
}

void MenuBar::unload(LoadedItem item, std::unique_ptr<ItemWidget> widget) {
    const std::weak_ptr<MenuExtra> extra = item.extra;
    const std::weak_ptr<MenuExtraView> view = item.extra->view();
    widget.reset();
    item.extra.reset();
    sharedWorkspace().notificationCenter().forgetGoneObservers();
    distributedNotificationCenter().forgetGoneObservers();
    if (extra.expired() && view.expired())
        return;
    logLine("menu extra %@ is still held by somebody, its code stays loaded", item.identifier);
    codeInUse_.push_back(std::move(item.code));
}

std::optional<std::uint32_t> MenuBar::find(std::string_view identifier) const {
    for (const Item& item : items_) {
        if (item.loaded.identifier == identifier)
            return item.reference;
    }
    return std::nullopt;
}

std::string MenuBar::identifierOf(std::uint32_t reference) const {
    for (const Item& item : items_) {
        if (item.reference == reference)
            return item.loaded.identifier;
    }
    return {};
}

std::vector<MenuBar::Description> MenuBar::items() const {
    std::vector<Description> result;
    for (const Item& item : items_)
        result.push_back({item.loaded.identifier, item.record.path, item.record.position,
                          item.loaded.extra->length()});
    return result;
}

std::vector<ItemRecord> MenuBar::records() const {
    std::vector<ItemRecord> result;
    for (const Item& item : items_)
        result.push_back(item.record);
    return result;
}

MenuBar::Item* MenuBar::itemOf(const MenuExtra& extra) {
    const auto item = std::find_if(items_.begin(), items_.end(),
                                   [&](const Item& i) { return i.loaded.extra.get() == &extra; });
    return item == items_.end() ? nullptr : &*item;
}

MenuBar::Item* MenuBar::itemWith(std::string_view identifier) {
    const auto item = std::find_if(items_.begin(), items_.end(), [&](const Item& i) {
        return i.loaded.identifier == identifier;
    });
    return item == items_.end() ? nullptr : &*item;
}

void MenuBar::placeItems() {
    std::vector<ItemWidget*> widgets;
    for (const Item& item : items_) {
        if (item.widget)
            widgets.push_back(item.widget.get());
    }
    window_.placeItems(widgets);
}

// What items ask for.

double MenuBar::statusBarThickness() const {
    return kBarHeight;
}

void MenuBar::viewNeedsDisplay(MenuExtraView&) {
    displayWanted_ = true;
}

// Just before the bar sleeps: an update of Qt's own would cost every tick another turn of the event
// loop.
void MenuBar::displayIfNeeded() {
    if (!std::exchange(displayWanted_, false))
        return;
    for (const Item& item : items_) {
        if (item.widget && item.loaded.extra->view()->needsDisplay())
            item.widget->repaint();
    }
}

void MenuBar::lengthChanged(MenuExtra& extra) {
    const Item* item = itemOf(extra);
    if (item && item->widget && item->widget->wantedWidth() != item->widget->width())
        placeItems();
}

Event MenuBar::currentEvent() const {
    if (handledEvent_)
        return *handledEvent_;
    return {.modifierFlags = qt::modifierFlags(QGuiApplication::keyboardModifiers()),
            .clickCount = 0};
}

// Clicks and menus.

bool MenuBar::click(std::string_view identifier, const Event& event) {
    const Item* item = itemWith(identifier);
    if (!item) {
        logLine("no click: menu extra %@ is not loaded", identifier);
        return false;
    }
    return send(*item, event);
}

bool MenuBar::send(const Item& item, const Event& event) {
    const StepJournal::Scope step(journal_, {"click", item.record});
    menuRequested_ = false;
    const auto outerEvent = std::exchange(handledEvent_, event);
    const bool calm =
        runGuarded(item.loaded.identifier, [&] { item.loaded.extra->view()->mouseDown(event); });
    handledEvent_ = outerEvent;
    return calm && !menuRequested_;
}

void MenuBar::toggleMenu(MenuExtra& extra) {
    menuRequested_ = true;
    Item* item = itemOf(extra);
    if (!item)
        return;
    if (extra.isMenuDown())
        closeMenuOf(*item);
    else
        showMenu(*item);
}

void MenuBar::showMenu(Item& item) {
    closeOpenMenu();
    const StepJournal::Scope step(journal_, {"menu", item.record});
    MenuExtra& extra = *item.loaded.extra;
    std::unique_ptr<qt::QtMenu> menu;
    runGuarded(item.loaded.identifier, [&] {
        extra.menuWillOpen();
        if (const auto model = extra.menu())
            menu = std::make_unique<qt::QtMenu>(*model, item.loaded.identifier);
    });
    if (!menu || menu->isEmpty()) {
        runGuarded(item.loaded.identifier, [&] { extra.menuDidClose(); });
        return;
    }
    connect(menu.get(), &QMenu::aboutToHide, this, [this, &extra] { menuClosed(extra); });
    connect(menu.get(), &qt::QtMenu::neighbourWanted, this,
            [this, &extra](int direction) { showMenuBeside(extra, direction); });
    menu->setMouseHandler([this](const QMouseEvent& event) { return mouseBesideMenu(event); });
    extra.setMenuDown(true);
    item.widget->update();
    menus_.push_back({&extra, std::move(menu)});
    menus_.back().menu->popup(item.widget->mapToGlobal(QPoint(0, kBarHeight)));
}

void MenuBar::closeMenuOf(Item& item) {
    if (item.loaded.extra->isMenuDown())
        closeOpenMenu();
    std::erase_if(menus_,
                  [&](const ShownMenu& shown) { return shown.owner == item.loaded.extra.get(); });
}

void MenuBar::menuClosed(MenuExtra& extra) {
    if (!extra.isMenuDown())
        return;
    extra.setMenuDown(false);
    if (const Item* item = itemOf(extra)) {
        item->widget->update();
        runGuarded(item->loaded.identifier, [&] { extra.menuDidClose(); });
    }
    QTimer::singleShot(0, this, [this] {
        std::erase_if(menus_, [](const ShownMenu& shown) { return !shown.menu->isVisible(); });
    });
}

/// A press is the item's under the mouse; a move leads from menu to menu.
bool MenuBar::mouseBesideMenu(const QMouseEvent& event) {
    const QPoint place = event.globalPosition().toPoint();
    const auto item = std::find_if(items_.begin(), items_.end(), [&](const Item& i) {
        return i.widget->isVisible() && i.widget->rect().contains(i.widget->mapFromGlobal(place));
    });
    if (item == items_.end())
        return false;
    const bool ownItem = item->loaded.extra->isMenuDown();
    if (event.type() == QEvent::MouseMove) {
        if (ownItem || !hasMenu(item->loaded))
            return false;
        switchMenuTo(*item);
        return true;
    }
    closeOpenMenu();
    if (!ownItem)
        item->widget->press(event);
    return true;
}

void MenuBar::showMenuBeside(MenuExtra& extra, int direction) {
    if (!extra.isMenuDown())
        return; // a quick second key, while the neighbour's is about to open
    // Items stand from right to left.
    std::vector<Item*> withMenu;
    for (Item& item : items_) {
        if (item.loaded.extra.get() == &extra || hasMenu(item.loaded))
            withMenu.push_back(&item);
    }
    const auto current = std::find(withMenu.begin(), withMenu.end(), itemOf(extra));
    const auto count = static_cast<std::ptrdiff_t>(withMenu.size());
    const std::ptrdiff_t place = (current - withMenu.begin() - direction + count) % count;
    Item& next = *withMenu[static_cast<std::size_t>(place)];
    if (next.loaded.extra.get() == &extra)
        return;
    switchMenuTo(next);
}

void MenuBar::switchMenuTo(const Item& item) {
    closeOpenMenu();
    QTimer::singleShot(0, this, [this, identifier = item.loaded.identifier] {
        if (Item* next = itemWith(identifier))
            showMenu(*next);
    });
}

qt::QtMenu* MenuBar::openMenu() const {
    const auto shown = std::find_if(menus_.begin(), menus_.end(),
                                    [](const ShownMenu& menu) { return menu.owner->isMenuDown(); });
    return shown == menus_.end() ? nullptr : shown->menu.get();
}

void MenuBar::closeOpenMenu() {
    if (qt::QtMenu* menu = openMenu())
        menu->close();
}

// Pictures.

QImage MenuBar::picture() {
    const QPixmap bar = window_.grab();
    const qt::QtMenu* menu = openMenu();
    if (!menu)
        return bar.toImage();
    const QPoint offset = menu->pos() - window_.pos();
    const QRect whole = window_.rect().united(QRect(offset, menu->size()));
    const double scale = bar.devicePixelRatio();
    QImage image((QSizeF(whole.size()) * scale).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(scale);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    painter.drawPixmap(-whole.topLeft(), bar);
    painter.drawPixmap(offset - whole.topLeft(), const_cast<qt::QtMenu*>(menu)->grab());
    return image;
}

bool MenuBar::snapshot(const std::string& path) {
    const QString name = qString(path);
    const QFileInfo info(name);
    if (!info.isAbsolute() || (info.exists() ? !info.isFile() : info.isSymLink())) {
        logLine("no picture: %@ is no absolute path of a file", path);
        return false;
    }
    QSaveFile file(name);
    const bool written =
        file.open(QIODevice::WriteOnly) && picture().save(&file, "PNG") && file.commit();
    if (!written)
        logLine("no picture at %@: %@", path, file.errorString().toStdString());
    return written;
}

} // namespace apps
