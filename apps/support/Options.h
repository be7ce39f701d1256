#pragma once

#include "apps/support/StartUp.h"

#include <optional>
#include <string>
#include <vector>

namespace apps {

/// The command line of a program with a window: its own arguments, the colours, and perhaps one
/// option more.
struct WindowOptions {
    std::vector<std::string> arguments;
    Appearance appearance = Appearance::Desktop;
    std::optional<std::string> select; ///< --select, where the program has it
};

/// What a program says of itself and takes.
struct CommandLine {
    const char* help;
    std::size_t mostArguments = 0;
    bool hasSelect = false;
};

/// Reads the command line. When there is nothing more to do, for --help, --version or wrong usage,
/// which are answered here, gives nothing and writes the program's status to @p status.
std::optional<WindowOptions> readWindowOptions(int argc, char** argv,
                                               const CommandLine& commandLine, int& status);

} // namespace apps
