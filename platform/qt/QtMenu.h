#pragma once

#include "platform/widgets/Menu.h"

#include <QMenu>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform::qt {

/// The widget of a menu. Contains the items that the menu has at construction, and follows later
/// changes of their titles and states. Actions run under the owner's identifier; see runGuarded.
/// Main thread only.
class QtMenu final : public QMenu {
    Q_OBJECT

  public:
    /// Called when the mouse is pressed or moved outside the menu and its submenus. Returns whether
    /// it handled the event.
    using MouseHandler = std::function<bool(const QMouseEvent& event)>;

    /// Shares ownership of the items, but does not keep @p menu alive. An item whose submenu is the
    /// menu that contains it, or a parent of that menu, is shown disabled and without a submenu.
    QtMenu(const Menu& menu, std::string owner, QWidget* parent = nullptr);
    ~QtMenu() override;

    void setOutsideMouseHandler(MouseHandler handler);

  signals:
    /// Emitted when an arrow key would leave the menu: with -1 to the left, with 1 to the right.
    void neighbourRequested(int direction);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addItem(const std::shared_ptr<MenuItem>& item);
    bool isNestedIn(const Menu& menu) const;
    bool handles(const QMouseEvent& event) const;

    const Menu* menu_; // only compared, never dereferenced
    std::string owner_;
    std::vector<std::shared_ptr<MenuItem>> items_;
    std::vector<QtMenu*> submenus_;
    MouseHandler mouseHandler_;
};

} // namespace platform::qt
