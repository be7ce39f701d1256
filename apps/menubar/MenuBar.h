#pragma once

#include "apps/menubar/BarMenu.h"
#include "apps/menubar/BarWindow.h"
#include "apps/menubar/CrashJournal.h"
#include "apps/menubar/ItemCollection.h"
#include "apps/menubar/KeyboardNavigation.h"
#include "apps/menubar/MenuTracker.h"
#include "platform/EventSource.h"
#include "platform/MenuExtraHost.h"
#include "platform/values/Event.h"

#include <QObject>

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace apps {

/// The menu bar: its window, its items, and the host interface that items call. Exceptions from an
/// item's code are logged with its identifier and do not affect other items. Main thread only.
class MenuBar final : public QObject, public platform::MenuExtraHost, public platform::EventSource {
    Q_OBJECT

  public:
    /// Installs itself as the process's MenuExtraHost and EventSource. Tells @p journal what it
    /// does with an item: loading, unloading, drawing, sending clicks and opening menus.
    MenuBar(platform::qt::QtGraphics& graphics, CrashJournal& journal);
    /// Unloads the remaining items.
    ~MenuBar() override;

    ItemCollection& items() { return items_; }

    void show();

    /// Simulates a mouse click on an item. Returns true if the item handled the click itself, false
    /// if the click opened or closed the item's menu. Also returns false, and logs, if the item is
    /// not loaded or its code throws.
    bool click(std::string_view identifier, const platform::Event& event);
    /// Returns whether the last click requested the item's menu.
    bool hasRequestedMenu() const { return menuRequested_; }

    /// Lets the keyboard select items, beginning with the leftmost; see KeyboardNavigation.
    void focus(KeyboardNavigation::Started started) { keyboard_.start(std::move(started)); }

    /// Saves an image of the bar and the open menu; see apps::writeSnapshot.
    bool snapshot(const std::string& path);

    double statusBarThickness() const override;
    void viewNeedsDisplay(platform::MenuExtraView& view) override;
    void lengthChanged(platform::MenuExtra& extra) override;
    void toggleMenu(platform::MenuExtra& extra) override;
    platform::Event currentEvent() const override;

  private:
    void itemAdded(Item& item);
    void placeItems();
    void displayIfNeeded();
    void openBarMenu(int x);
    bool pressItem(const QMouseEvent& event);
    void endDrawing(Item& item);
    bool send(const Item& item, const platform::Event& event);

    CrashJournal& journal_;
    platform::ScopedService<platform::MenuExtraHost> asHost_;
    platform::ScopedService<platform::EventSource> asEventSource_;
    BarWindow window_;
    ItemCollection items_;
    MenuTracker menus_;
    KeyboardNavigation keyboard_;
    BarMenu barMenu_;

    bool displayNeeded_ = false;
    bool menuRequested_ = false; // by the click that is being handled
    std::optional<CrashJournal::Scope> drawing_;
};

} // namespace apps
