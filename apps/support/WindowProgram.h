#pragma once

#include "apps/support/Options.h"

namespace apps {

/// What main does in a program with a window: reads the command line, makes the application object,
/// puts the desktop's services in place, and gives what @p run gives, or the status that the
/// command line leads to.
int runWindowProgram(int argc, char** argv, const char* name, const CommandLine& commandLine,
                     int (*run)(const WindowOptions& options));

} // namespace apps
