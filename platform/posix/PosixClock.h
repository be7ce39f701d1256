#pragma once

#include "platform/Clock.h"

#include <string>

namespace platform::posix {

/// The system's clock. Ticks come from timers on the time of day that also report when that was
/// set; the time zone is followed by watching the file that holds it.
class PosixClock final : public Clock {
  public:
    /// @p zoneFile is the file that says which time zone the system is in.
    explicit PosixClock(std::string zoneFile = "/etc/localtime");

    std::int64_t now() const override;
    std::tm localTime(std::int64_t secondsSince1970) const override;
    void sleep(std::uint64_t microseconds) override;
    std::unique_ptr<Watch> tick(TickInterval interval, std::function<void()> handler) override;

  private:
    std::string zoneFile_;
};

} // namespace platform::posix
