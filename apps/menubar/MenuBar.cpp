#include "apps/menubar/MenuBar.h"

#include "apps/menubar/BarSnapshot.h"
#include "apps/menubar/BarStyle.h"
#include "apps/menubar/CrashJournal.h"
#include "platform/Log.h"
#include "platform/qt/HandledEvent.h"
#include "platform/qt/QtMenu.h"
#include "platform/runtime/Guard.h"

#include <QAbstractEventDispatcher>
#include <QMouseEvent>

#include <utility>
#include <vector>

using namespace platform;

namespace apps {

MenuBar::MenuBar(qt::QtGraphics& graphics, CrashJournal& journal)
    : journal_(journal), asHost_(*this), asEventSource_(*this), items_(graphics, journal, window_),
      menus_(items_, journal), keyboard_(window_, items_, menus_) {
    connect(&items_, &ItemCollection::added, this, &MenuBar::itemAdded);
    connect(&items_, &ItemCollection::removed, this, &MenuBar::placeItems);
    connect(&items_, &ItemCollection::sorted, this, &MenuBar::placeItems);
    connect(&keyboard_, &KeyboardNavigation::pressed, this, &MenuBar::send);
    connect(&window_, &BarWindow::menuRequested, this, &MenuBar::openBarMenu);
    // Drawing happens just before the event loop blocks. QWidget::update would need another
    // iteration of the loop per tick.
    connect(QAbstractEventDispatcher::instance(), &QAbstractEventDispatcher::aboutToBlock, this,
            &MenuBar::displayIfNeeded);
}

MenuBar::~MenuBar() {
    items_.clear();
}

void MenuBar::show() {
    window_.showOnScreen();
}

void MenuBar::itemAdded(Item& item) {
    const ItemWidget* widget = item.widget.get();
    connect(widget, &ItemWidget::pressed, this,
            [this, &item](const Event& event) { send(item, event); });
    connect(widget, &ItemWidget::aboutToDraw, this,
            [this, &item] { drawing_.emplace(journal_, "drawing", item.identifier()); });
    connect(widget, &ItemWidget::drawn, this, [this, &item] { endDrawing(item); });
    placeItems();
}

void MenuBar::placeItems() {
    std::vector<ItemWidget*> widgets;
    for (const Item& item : items_)
        widgets.push_back(item.widget.get());
    window_.placeItems(widgets);
}

void MenuBar::openBarMenu(int x) {
    barMenu_.open(QRect(window_.mapToGlobal(QPoint(x, 0)), QSize(1, kBarHeight)),
                  [this](const QMouseEvent& event) { return pressItem(event); });
}

/// Passes a press beside the bar's menu to the item below the pointer. Returns false if there is
/// none.
bool MenuBar::pressItem(const QMouseEvent& event) {
    const QPoint position = window_.mapFromGlobal(event.globalPosition().toPoint());
    auto* const item = qobject_cast<ItemWidget*>(window_.childAt(position));
    if (!item || event.type() != QEvent::MouseButtonPress)
        return false;
    barMenu_.close();
    item->press(event);
    return true;
}

void MenuBar::endDrawing(Item& item) {
    drawing_.reset();
    item.wasDrawn = true;
    item.extra().view()->didDisplay();
}

double MenuBar::statusBarThickness() const {
    return kBarHeight;
}

void MenuBar::viewNeedsDisplay(MenuExtraView&) {
    displayNeeded_ = true;
}

void MenuBar::displayIfNeeded() {
    if (!std::exchange(displayNeeded_, false))
        return;
    for (const Item& item : items_) {
        if (item.extra().view()->needsDisplay())
            item.widget->repaint();
    }
}

void MenuBar::lengthChanged(MenuExtra& extra) {
    const Item* item = items_.find(extra);
    if (item && item->widget->preferredWidth() != item->widget->width())
        placeItems();
}

Event MenuBar::currentEvent() const {
    return qt::HandledEvent::current();
}

bool MenuBar::click(std::string_view identifier, const Event& event) {
    const Item* item = items_.find(identifier);
    if (!item) {
        logLine("cannot click menu extra %@: it is not loaded", identifier);
        return false;
    }
    return send(*item, event);
}

bool MenuBar::send(const Item& item, const Event& event) {
    const CrashJournal::Scope step(journal_, "click", item.identifier());
    menuRequested_ = false;
    const qt::HandledEvent scope(event);
    const auto view = item.extra().view(); // the click may replace it
    const bool returned = runGuarded(item.identifier(), [&] { view->mouseDown(event); });
    return returned && !menuRequested_;
}

void MenuBar::toggleMenu(MenuExtra& extra) {
    menuRequested_ = true;
    if (Item* item = items_.find(extra))
        menus_.toggle(*item);
}

bool MenuBar::snapshot(const std::string& path) {
    qt::QtMenu* const menu = menus_.openMenu();
    return writeSnapshot(window_, menu ? menu : barMenu_.openMenu(), path);
}

} // namespace apps
