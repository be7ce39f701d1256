#pragma once

#include <QRect>

#include <memory>

class QWidget;

namespace platform::qt {
class QtMenu;
}

namespace apps {

/// The menu of the bar itself: Preferences…, About and Quit. Preferences… is disabled if the
/// preference pane is not installed. Main thread only.
class BarMenu final {
  public:
    BarMenu();
    ~BarMenu();

    /// Opens the menu below a place in the bar, a rectangle on the screen.
    void open(const QRect& place);
    /// Returns the open menu, or null.
    platform::qt::QtMenu* openMenu() const;

  private:
    void showAbout();

    std::unique_ptr<platform::qt::QtMenu> menu_;
    std::unique_ptr<QWidget> about_;
};

} // namespace apps
