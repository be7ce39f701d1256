#pragma once

#include "platform/ProcessList.h"
#include "platform/qt/BusConnection.h"

#include <string>

namespace platform::qt {

/// The applications that can be reached over the session bus: processes that run the program of an
/// application bundle and own its identifier as a name on the bus. Programs in other sessions,
/// other programs with the name of an application, and applications that are still starting are not
/// listed. Without a bus the list is empty. A call blocks for at most 1 s per application, plus the
/// time to connect (see BusConnection::get). Thread-safe.
class BusProcessList final : public ProcessList {
  public:
    /// @p busAddress is empty for the session bus. The first call of processes connects.
    explicit BusProcessList(std::string busAddress = {});

    std::vector<RunningProcess> processes() const override;

  private:
    mutable BusConnection connection_;
};

} // namespace platform::qt
