#pragma once

#include <optional>
#include <string>

/// Runs command lines with the system's shell. Each operation keeps the calling thread waiting
/// until the command has ended; the command has this process's standard input. Its exit status is
/// never reported. When no pipe can be opened, "Error opening pipe: %@" is logged with the command
/// line, and the alert sounds. Safe from any thread.
class HalvexRunCommand {
  public:
    HalvexRunCommand() = delete;

    /// Nobody reads the output: a command that writes finds a closed pipe.
    static void HalvexRunNoOutput(const std::string& command);

    /// What the command has written to its standard output, up to the end or to a fault in reading
    /// it; nothing when there is no pipe, or when that is not ASCII (not logged).
    static std::optional<std::string> HalvexUtilGetPipeData(const std::string& command);
};
