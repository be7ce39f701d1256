#pragma once

#include <string>

/// Which colours the bar has.
enum class Appearance { Desktop, Light, Dark };

/// Chooses where the bar is drawn, before the QApplication is made: on the X server (under Wayland
/// through XWayland), or offscreen when there is none. A choice in the environment wins. Also
/// leaves out what a bar never needs of Qt and would pay for at start.
void chooseDisplay();

/// Sends what Qt has to say to the system log from now on.
void logQtMessages();

/// Gives the program the palette that was asked for; the desktop's is there already.
void applyAppearance(Appearance appearance);

/// The bundle of the bar's own clock, found from where this program is.
std::string ownClockPath();

/// A path from the command line, absolute and without trailing slashes.
std::string absolutePath(const std::string& path);
