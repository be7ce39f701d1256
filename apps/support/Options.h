#pragma once

#include "apps/support/Appearance.h"

#include <optional>
#include <string>
#include <vector>

namespace apps {

/// The parsed command line of a program with a window.
struct WindowOptions {
    std::vector<std::string> arguments;
    Appearance appearance = Appearance::Desktop;
    std::optional<std::string> select; ///< the value of --select
};

/// The command line that a program accepts. All programs accept --appearance, --help and --version.
struct CommandLine {
    const char* help;
    std::size_t maxArguments = 0;
    bool hasSelect = false; ///< accepts --select instead of arguments
};

/// Parses the command line. Returns std::nullopt if the program should exit with @p status: 0 after
/// --help or --version, whose text has been printed, and 2 after wrong usage, for which the help
/// has been printed to standard error.
std::optional<WindowOptions> readWindowOptions(int argc, char** argv,
                                               const CommandLine& commandLine, int& status);

} // namespace apps
