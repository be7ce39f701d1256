#pragma once

#include <memory>

class QApplication;

namespace apps {

/// Creates the application object, or logs why there is no display and returns null. Call once, at
/// the top of main. @p argv must outlive the object; Qt parses no options from it. @p name is the
/// application's name in log lines and on the desktop.
///
/// The layout has the direction in which the user's language is written, and text has the
/// desktop's font (see applyDesktopFont).
///
/// Qt draws on the X server named by DISPLAY (under Wayland, through Xwayland). QT_QPA_PLATFORM
/// overrides that, for example "offscreen", except that "wayland" is ignored if DISPLAY is set,
/// because a bar cannot reserve space on the screen under Wayland. If Qt cannot connect to the
/// display, the process logs that and exits with 1. Programs started later do not inherit these
/// settings. Qt's messages go to the system log.
std::unique_ptr<QApplication> startApplication(char** argv, const char* name);

} // namespace apps
