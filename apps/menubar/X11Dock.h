#pragma once

#include <QRect>

class QScreen;
class QWindow;

namespace apps {

/// Tells an X11 window manager that a window is a dock: on every desktop, and with the top of a
/// screen reserved for it. Nothing on other platforms.
class X11Dock {
  public:
    /// @p window has its native window already and is not shown yet.
    static void makeDock(QWindow& window);
    /// Reserves the top @p height points of @p screen; again whenever one of them changes.
    static void reserveTop(QWindow& window, const QScreen& screen, int height);
};

} // namespace apps
