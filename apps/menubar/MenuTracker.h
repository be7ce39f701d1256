#pragma once

#include <QObject>

#include <memory>
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
    /// Closes the item's menu, if it is open, and destroys it.
    void close(Item& item);
    /// Returns the open menu, or null.
    platform::qt::QtMenu* openMenu() const;

  private:
    struct TrackedMenu {
        platform::MenuExtra* owner = nullptr;
        std::unique_ptr<platform::qt::QtMenu> menu;
    };

    void open(Item& item);
    void closeOpenMenu();
    void switchTo(const Item& item);
    void switchToNeighbour(platform::MenuExtra& extra, int direction);
    bool handleMouse(const QMouseEvent& event);
    void menuClosed(platform::MenuExtra& extra);

    ItemCollection& items_;
    CrashJournal& journal_;
    std::vector<TrackedMenu> menus_; // at most one is open; the event loop destroys closed ones
};

} // namespace apps
