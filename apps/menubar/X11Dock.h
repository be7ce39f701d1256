#pragma once

#include <QRect>

class QScreen;
class QWindow;

namespace apps {

/// Makes a window a dock for the X11 window manager: shown on every desktop, with the top of a
/// screen reserved for it. Does nothing on other platforms.
class X11Dock {
  public:
    /// @p window must have its native window and must not be shown yet.
    static void makeDock(QWindow& window);
    /// Reserves the top @p height points of @p screen. Call it again when the screen changes.
    static void reserveTop(QWindow& window, const QScreen& screen, int height);
    /// Makes the program receive all keys, without changing the focus, until releaseKeyboard is
    /// called or its last popup window is closed. Returns false if another program has grabbed the
    /// keyboard. @p window must be shown.
    static bool grabKeyboard(QWindow& window);
    static void releaseKeyboard();
    /// Returns whether @p event, the message of a QWidget::nativeEvent, is the window manager's
    /// request to close the window.
    static bool isCloseRequest(const void* event);
};

} // namespace apps
