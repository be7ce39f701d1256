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

/// Parses the command line. If the program should exit, returns std::nullopt and sets @p status: to
/// 0 after printing the text of --help or --version, or to 2 after printing the help to standard
/// error because of a usage error.
std::optional<WindowOptions> readWindowOptions(int argc, char** argv,
                                               const CommandLine& commandLine, int& status);

} // namespace apps
