#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <string>
#include <vector>

namespace platform {

/// Names one process for as long as the system runs: unlike a process identifier it is not given
/// to another one later. Never 0.
using ProcessSerialNumber = std::uint64_t;

struct RunningProcess {
    ProcessSerialNumber serialNumber = 0;
    std::string name; ///< the application's
};

/// The programs that run now. Safe from any thread.
class ProcessList : NonCopyable {
  public:
    virtual ~ProcessList();

    /// The user's own processes that have not ended, by process identifier. The program of an
    /// application bundle has the bundle's name, any other that of its file.
    virtual std::vector<RunningProcess> processes() const = 0;
};

/// The system's own until a host installs another one.
ProcessList& processList();
template <>
ProcessList* exchangeService<ProcessList>(ProcessList* service);

} // namespace platform
