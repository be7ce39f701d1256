#pragma once

#include <CLI/CLI.hpp>

namespace apps {

/// Parses the arguments of main() as CLI::App::parse does, except that "--option=" sets the option
/// to the empty text instead of taking the next argument as its value.
void parseArguments(CLI::App& commandLine, int argc, char** argv);

} // namespace apps
