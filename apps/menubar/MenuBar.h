#pragma once

#include "apps/menubar/BarWindow.h"
#include "apps/menubar/ItemLoader.h"
#include "apps/menubar/ItemWidget.h"
#include "apps/menubar/StepJournal.h"
#include "apps/shared/ItemRecord.h"
#include "platform/EventSource.h"
#include "platform/MenuExtraHost.h"
#include "platform/MenuExtraServer.h"
#include "platform/qt/QtMenu.h"
#include "platform/values/Event.h"
#include "platform/widgets/MenuExtra.h"

#include <QObject>

#include <cstdint>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace platform::qt {
class QtGraphics;
}

namespace apps {

/// The menu bar: loads items, shows them, sends clicks to them, opens their menus and unloads them.
/// An item that fails takes nothing with it: what its code throws is logged with its identifier.
/// Main thread.
class MenuBar final : public QObject, public platform::MenuExtraHost, public platform::EventSource {
    Q_OBJECT

  public:
    struct Description {
        std::string identifier;
        std::string path; ///< of its bundle
        std::int32_t position = 0;
        double width = 0; ///< points
    };

    /// Puts itself in place as the items' host and source of events. What an item might not
    /// survive, its loading, its first drawing, each click and each menu, is noted in @p journal
    /// while it lasts.
    MenuBar(platform::qt::QtGraphics& graphics, StepJournal& journal);
    /// Unloads what is left.
    ~MenuBar() override;

    /// Loads the item in the bundle folder @p path and shows it. @p position orders the items from
    /// the right; of equal ones the later is further left. An item that is loaded already stays as
    /// it is. Whatever goes wrong is logged with the path or identifier.
    platform::MenuExtraStatus add(const std::string& path, std::int32_t position, Origin origin);
    /// Closes the item's menu, tells the item, and unloads it and its code.
    platform::MenuExtraStatus remove(std::uint32_t reference);

    void unloadAll();

    /// The reference of a loaded item, never 0; nothing when it is not loaded.
    std::optional<std::uint32_t> find(std::string_view identifier) const;
    /// Empty when no item has the reference.
    std::string identifierOf(std::uint32_t reference) const;
    /// From right to left.
    std::vector<Description> items() const;
    std::vector<ItemRecord> records() const;

    /// Sends a click to an item as the mouse would; whether the item handled it itself. False when
    /// there is no such item, which is logged.
    bool click(std::string_view identifier, const platform::Event& event);

    /// Writes the bar, with a menu that is open, as PNG to an absolute path. False, and logged,
    /// when that cannot be done.
    bool snapshot(const std::string& path);

    void show();

    // What items ask for.
    double statusBarThickness() const override;
    void viewNeedsDisplay(platform::MenuExtraView& view) override;
    void lengthChanged(platform::MenuExtra& extra) override;
    void toggleMenu(platform::MenuExtra& extra) override;
    platform::Event currentEvent() const override;

  signals:
    void loaded(const QString& identifier);
    void unloaded(const QString& identifier);

  private:
    struct Item {
        std::uint32_t reference = 0;
        ItemRecord record;
        LoadedItem loaded;
        bool wasDrawn = false;
        std::unique_ptr<ItemWidget> widget; // goes before what it shows
    };

    struct ShownMenu {
        platform::MenuExtra* owner = nullptr;
        std::unique_ptr<platform::qt::QtMenu> menu;
    };

    Item* itemOf(const platform::MenuExtra& extra);
    Item* itemWith(std::string_view identifier);
    void show(Item& item);
    void displayIfNeeded();
    void noteFirstDrawing(Item& item);
    void noteDrawn(Item& item);
    void unload(LoadedItem item, std::unique_ptr<ItemWidget> widget);
    bool send(const Item& item, const platform::Event& event);
    void showMenu(Item& item);
    void closeMenuOf(Item& item);
    void menuClosed(platform::MenuExtra& extra);
    bool mouseBesideMenu(const QMouseEvent& event);
    void showMenuBeside(platform::MenuExtra& extra, int direction);
    void switchMenuTo(const Item& item);
    platform::qt::QtMenu* openMenu() const;
    void closeOpenMenu();
    void placeItems();
    QImage picture();

    platform::qt::QtGraphics& graphics_;
    StepJournal& journal_;
    platform::ScopedService<platform::MenuExtraHost> asHost_;
    platform::ScopedService<platform::EventSource> asEvents_;
    BarWindow window_;
    std::list<Item> items_; // from right to left
    std::uint32_t lastReference_ = 0;
    std::vector<std::unique_ptr<platform::LoadedCode>> codeInUse_; // of items that somebody holds

    bool displayWanted_ = false;

    std::vector<ShownMenu> menus_; // at most one is open; closed ones go soon
    bool menuRequested_ = false;   // by the click that is being handled
    std::optional<platform::Event> handledEvent_;
};

} // namespace apps
