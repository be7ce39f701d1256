#pragma once

#include "platform/ProcessList.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace platform::posix {

/// The current user's processes in /proc.
class PosixProcessList final : public ProcessList {
  public:
    std::vector<RunningProcess> processes() const override;
};

/// Returns the process with a serial number, or std::nullopt if it has exited.
std::optional<pid_t> processIdentifier(ProcessSerialNumber serialNumber);

/// Returns the path that a process's program had at its start, or std::nullopt if the process has
/// exited or may not be inspected.
std::optional<std::string> programOf(pid_t process);

/// Returns the identifier of the application bundle whose program the process runs. Returns
/// std::nullopt if it runs another program or has exited, or if the bundle has no identifier.
std::optional<std::string> applicationIdentifier(ProcessSerialNumber serialNumber);

} // namespace platform::posix
