#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/Event.h"

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>

#include <functional>
#include <memory>
#include <string>

class QKeyEvent;
class QWidget;

namespace apps {

class BarWindow;
class ItemCollection;
class MenuTracker;
struct Item;

/// Lets the user reach the items with the keyboard. While it is active, the bar receives all keys,
/// and one item is selected: its menu is open or, if it has none, it is highlighted. The left and
/// right arrow keys select the next item, wrapping around at the ends. Return and the space bar
/// press an item without a menu. Escape, choosing an action, and everything else that closes the
/// menu end the navigation; the keyboard then returns to the window that had it.
///
/// The keyboard is grabbed: the focus stays where it was, so nothing needs to be restored. Main
/// thread only.
class KeyboardNavigation final : public QObject {
    Q_OBJECT

  public:
    /// Called once, with an empty string or with the human-readable reason why nothing is selected.
    using Started = std::function<void(const std::string& problem)>;

    KeyboardNavigation(BarWindow& bar, ItemCollection& items, MenuTracker& menus);
    ~KeyboardNavigation() override;

    /// Selects the item whose menu is open, otherwise the leftmost one, or the rightmost one if the
    /// layout is from right to left. If another program has
    /// grabbed the keyboard, such as a window manager until the keys that started the navigation
    /// are released, tries again for two seconds. If the navigation is active, changes nothing.
    void start(Started started);

  signals:
    /// An item without a menu was pressed. The navigation has ended.
    void pressed(apps::Item& item, const platform::Event& event);

  private:
    void tryToBegin();
    void begin();
    void end();
    void select(const std::string& identifier);
    bool moveBy(int direction);
    void handleKey(const QKeyEvent& event);
    void press(const QKeyEvent& event);
    void menuClosed();

    BarWindow& bar_;
    ItemCollection& items_;
    MenuTracker& menus_;
    const std::unique_ptr<QWidget> keyReceiver_;

    bool isActive_ = false;
    bool isSwitching_ = false; // closes a menu to select another item
    std::string selected_;     // an identifier
    bool isShown_ = false;     // the selected item is highlighted or its menu is open
    Started started_;
    QElapsedTimer sinceStart_;
    QElapsedTimer sinceEnd_;
    QTimer retry_;
};

} // namespace apps
