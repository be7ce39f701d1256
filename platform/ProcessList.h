#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

/// Identifies a process until the system restarts. Never 0 and, unlike a PID, never reused.
using ProcessSerialNumber = std::uint64_t;

struct RunningProcess {
    ProcessSerialNumber serialNumber = 0;
    std::string name; ///< name of the application
};

/// The running programs. Thread-safe.
class ProcessList : NonCopyable {
  public:
    virtual ~ProcessList();

    /// Returns the user's running processes, ordered by PID. The program of an application bundle
    /// is named after the bundle (CFBundleName, else the folder name without its extension), any
    /// other program after its executable file.
    virtual std::vector<RunningProcess> processes() const = 0;
};

/// Returns the process list. The default is the system's.
ProcessList& processList();
template <>
ProcessList* exchangeService<ProcessList>(ProcessList* service);

} // namespace platform
