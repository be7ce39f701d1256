#pragma once

#include "apps/support/Options.h"

class QWidget;

namespace apps {

/// The body of main() for a program with a window. Parses the command line, creates the application
/// object, installs the desktop services and returns the result of @p run. If readWindowOptions
/// returns std::nullopt, returns its exit status instead; without a display, returns 1.
int runWindowProgram(int argc, char** argv, const char* name, const CommandLine& commandLine,
                     int (*run)(const WindowOptions& options));

/// Shows, raises and activates @p window, and restores it if it is minimized.
void bringToFront(QWidget& window);

} // namespace apps
