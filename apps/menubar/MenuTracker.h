#pragma once

#include <QObject>

#include <functional>
#include <memory>
#include <utility>
#include <vector>

class QMouseEvent;

namespace platform {
class MenuExtra;
namespace qt {
class QtMenu;
}
} // namespace platform

namespace apps {

class CrashJournal;
class ItemCollection;
struct Item;

/// Opens, closes and switches the items' menus. At most one menu is open. While one is, moving the
/// mouse over another item opens that item's menu instead, and the left and right arrow keys open
/// the menu of the next item in that direction, wrapping around at the ends. Items without a menu
/// are ignored. Main thread only.
class MenuTracker final : public QObject {
    Q_OBJECT

  public:
    /// Opening a menu is recorded in @p journal.
    MenuTracker(ItemCollection& items, CrashJournal& journal);
    ~MenuTracker() override;

    /// Opens the item's menu below it, or closes it if it is open.
    void toggle(Item& item);
    /// Opens the item's menu below it and closes the one that is open. Returns false if the item
    /// has no menu.
    bool open(Item& item);
    /// Closes the item's menu, if it is open, and destroys it.
    void close(Item& item);
    /// Closes the open menu, if there is one.
    void closeOpenMenu();
    /// @p handler is called for an arrow key that leaves the menu, with -1 to the left and 1 to the
    /// right. If it returns false, the next item's menu is opened.
    void setNeighbourHandler(std::function<bool(int direction)> handler) {
        neighbourHandler_ = std::move(handler);
    }
    /// Returns the open menu, or null.
    platform::qt::QtMenu* openMenu() const;

  signals:
    void closed();

  private:
    struct TrackedMenu {
        platform::MenuExtra* owner = nullptr;
        std::unique_ptr<platform::qt::QtMenu> menu;
    };

    void switchTo(const Item& item);
    void switchToNeighbour(platform::MenuExtra& extra, int direction);
    bool handleMouse(const QMouseEvent& event);
    void menuClosed(platform::MenuExtra& extra);

    ItemCollection& items_;
    CrashJournal& journal_;
    std::function<bool(int direction)> neighbourHandler_;
    std::vector<TrackedMenu> menus_; // at most one is open; the event loop destroys closed ones
};

} // namespace apps
