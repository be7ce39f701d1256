#pragma once

#include "platform/ProcessList.h"

#include <optional>
#include <string>
#include <sys/types.h>

namespace platform::posix {

/// The processes that the system's process file system shows.
class PosixProcessList final : public ProcessList {
  public:
    std::vector<RunningProcess> processes() const override;
};

/// The process identifier that belongs to a serial number; nothing once the process has ended.
std::optional<pid_t> processIdentifier(ProcessSerialNumber serialNumber);

/// The file of a process's program, where it was when it was started; nothing when the system does
/// not say.
std::optional<std::string> programOf(pid_t process);

} // namespace platform::posix
