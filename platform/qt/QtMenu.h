#pragma once

#include "platform/widgets/Menu.h"

#include <QMenu>

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace platform::qt {

/// A menu on the screen. Built from the items as they are when it is made; titles and states that
/// change while it is open are followed. Actions run under the owner's name. Main thread.
class QtMenu final : public QMenu {
    Q_OBJECT

  public:
    /// Told of a press or a move of the mouse beside the menu and its submenus; whether it has
    /// dealt with that.
    using MouseHandler = std::function<bool(const QMouseEvent& event)>;

    /// Keeps the items, not the menu, for as long as it lives. A menu that is its own submenu, or
    /// that of one of its submenus, is a title there and cannot be opened.
    QtMenu(const Menu& menu, std::string owner, QWidget* parent = nullptr);
    ~QtMenu() override;

    void setMouseHandler(MouseHandler handler);

  signals:
    /// The arrow keys lead out of the menu: -1 to the left, 1 to the right.
    void neighbourWanted(int direction);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void mouseMoveEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addItem(const std::shared_ptr<MenuItem>& item);
    bool shows(const Menu& menu) const;
    bool isHandled(const QMouseEvent& event) const;

    const Menu* menu_; // to know it again, no more
    std::string owner_;
    std::vector<std::shared_ptr<MenuItem>> items_;
    std::vector<QtMenu*> submenus_;
    MouseHandler mouseHandler_;
};

} // namespace platform::qt
