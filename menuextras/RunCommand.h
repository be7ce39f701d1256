#pragma once

#include <optional>
#include <string>

/// Runs shell commands. Each operation blocks until the command has exited. The command inherits
/// this process's standard input; its exit status is ignored. If no pipe can be opened, logs
/// "Error opening pipe: %@" with the command line and beeps. Operations never throw. Thread-safe.
class HalvexRunCommand {
  public:
    HalvexRunCommand() = delete;

    /// Runs a command and closes the pipe from its standard output without reading it. A command
    /// that writes may be terminated by SIGPIPE.
    static void HalvexRunNoOutput(const std::string& command);

    /// Runs a command and returns its standard output, up to the end or the first read error.
    /// Returns std::nullopt if no pipe can be opened, if the output is not ASCII (not logged), or
    /// if memory runs out (logged).
    static std::optional<std::string> HalvexUtilGetPipeData(const std::string& command);
};
