#pragma once

#include <QRect>

#include <functional>
#include <memory>

class QMouseEvent;
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

    /// Called when the mouse is pressed or moved outside the menu. Returns whether it handled the
    /// event.
    using MouseHandler = std::function<bool(const QMouseEvent& event)>;

    /// Opens the menu below a place in the bar, a rectangle on the screen.
    void open(const QRect& place, MouseHandler handler = {});
    /// Closes the menu if it is open.
    void close();
    /// Returns the open menu, or null.
    platform::qt::QtMenu* openMenu() const;

  private:
    void showAbout();

    std::unique_ptr<platform::qt::QtMenu> menu_;
    std::unique_ptr<QWidget> about_;
};

} // namespace apps
