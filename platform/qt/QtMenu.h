#pragma once

#include "platform/Menu.h"

#include <QMenu>
#include <memory>
#include <string>
#include <vector>

namespace platform::qt {

/// A menu on the screen. Built from the items as they are when it is made; titles and states that
/// change while it is open are followed. Actions run under the owner's name. Main thread.
class QtMenu final : public QMenu {
    Q_OBJECT

  public:
    /// Keeps the items, not the menu, for as long as it lives.
    QtMenu(const Menu& menu, std::string owner, QWidget* parent = nullptr);
    ~QtMenu() override;

  private:
    void addItem(const std::shared_ptr<MenuItem>& item);

    std::string owner_;
    std::vector<std::shared_ptr<MenuItem>> items_;
};

} // namespace platform::qt
