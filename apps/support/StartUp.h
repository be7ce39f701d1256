#pragma once

#include <memory>

class QApplication;

namespace apps {

/// Creates the application object. Call once, at the top of main. @p argv stays with the object,
/// but Qt reads no options from it. @p name is the application's name in logs and to the desktop.
///
/// Qt draws on the X server named by DISPLAY (under Wayland through Xwayland), or offscreen, with a
/// log line, if there is none. QT_QPA_PLATFORM overrides the choice, except for "wayland", where a
/// bar cannot reserve space on the screen. Programs started later do not inherit these settings.
/// Qt's messages go to the system log.
std::unique_ptr<QApplication> startApplication(char** argv, const char* name);

} // namespace apps
