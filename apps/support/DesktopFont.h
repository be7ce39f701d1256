#pragma once

namespace apps {

/// Sets the application's font to the desktop's interface font: the one that the X server's
/// settings manager announces (XSETTINGS "Gtk/FontName"), unless QT_QPA_PLATFORMTHEME selects a
/// theme for Qt. Without one, the font of Qt's platform theme stays; the built-in default of 9
/// points becomes 10, as on other desktops. Does not look up the font. Needs a QApplication.
void applyDesktopFont();

} // namespace apps
