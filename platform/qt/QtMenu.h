#pragma once

#include "platform/Menu.h"

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
    /// Told of a press beside the menu and its submenus; whether it has dealt with the press.
    using PressHandler = std::function<bool(const QMouseEvent& press)>;

    /// Keeps the items, not the menu, for as long as it lives.
    QtMenu(const Menu& menu, std::string owner, QWidget* parent = nullptr);
    ~QtMenu() override;

    void setPressHandler(PressHandler handler);

  signals:
    /// The arrow keys lead out of the menu: -1 to the left, 1 to the right.
    void neighbourWanted(int direction);

  protected:
    void mousePressEvent(QMouseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void addItem(const std::shared_ptr<MenuItem>& item);

    std::string owner_;
    std::vector<std::shared_ptr<MenuItem>> items_;
    std::vector<QtMenu*> submenus_;
    PressHandler pressHandler_;
};

} // namespace platform::qt
