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

/// The running applications. Thread-safe.
class ProcessList : NonCopyable {
  public:
    virtual ~ProcessList();

    /// Returns the user's running applications, ordered by PID. An application is named after its
    /// bundle (CFBundleName, else the folder name without its extension).
    virtual std::vector<RunningProcess> processes() const = 0;
};

/// Returns the process list. The default lists all programs of the user, those without a bundle
/// under the names of their executable files. That of a desktop lists only applications that own
/// their identifier as a name on the session bus.
ProcessList& processList();
template <>
ProcessList* exchangeService<ProcessList>(ProcessList* service);

} // namespace platform
