#pragma once

#include "apps/support/Options.h"

class QWidget;

namespace apps {

/// The body of main() for a program with a window. Parses the command line, creates the application
/// object, installs the desktop services and returns the result of @p run, or the exit status of
/// readWindowOptions if that says to exit.
int runWindowProgram(int argc, char** argv, const char* name, const CommandLine& commandLine,
                     int (*run)(const WindowOptions& options));

/// Shows @p window, restores it if it is minimized, and raises it above other windows.
void bringToFront(QWidget& window);

} // namespace apps
