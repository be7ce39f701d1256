#pragma once

#include "platform/Clock.h"
#include "platform/posix/LocalZone.h"

#include <string>

namespace platform::posix {

/// The system clock. Ticks come from timers on CLOCK_REALTIME, which also report when the clock is
/// set. Changes of the time zone are detected by watching its file.
class PosixClock final : public Clock {
  public:
    /// @p zoneFile is the file, or the link to it, that holds the system's time zone.
    explicit PosixClock(std::string zoneFile = kLocalZoneFile);

    std::int64_t now() const override;
    std::tm localTime(std::int64_t secondsSince1970) const override;
    void sleep(std::uint64_t microseconds) override;
    std::unique_ptr<Watch> tick(TickInterval interval, std::function<void()> handler) override;

  private:
    std::string zoneFile_;
};

} // namespace platform::posix
