#pragma once

#include "platform/MainThread.h"
#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <cstdint>
#include <ctime>
#include <functional>
#include <memory>

namespace platform {

enum class TickInterval { Second, Minute };

/// The time of day.
class Clock : NonCopyable {
  public:
    virtual ~Clock();

    /// Seconds since 1970-01-01 00:00:00 UTC. Safe from any thread.
    virtual std::int64_t now() const = 0;

    /// A moment in the system's time zone as it is now. Its tm_zone stays valid until the zone
    /// changes. Safe from any thread.
    virtual std::tm localTime(std::int64_t secondsSince1970) const = 0;

    /// Makes the calling thread wait for at least this time. Safe from any thread.
    virtual void sleep(std::uint64_t microseconds) = 0;

    /// Calls @p handler at every full second or minute, and at once after the clock was set, the
    /// machine woke up or the time zone changed. Nothing wakes the program in between. The first
    /// call comes at the next boundary, not during this one. What the handler throws is logged
    /// under the name of the owner that asked and goes no further. Gives null, after a log line,
    /// when the system has no timer left. Main thread.
    virtual std::unique_ptr<Watch> tick(TickInterval interval, std::function<void()> handler) = 0;
};

/// The process's clock; the system's own until a host installs another one.
Clock& systemClock();
template <>
Clock* exchangeService<Clock>(Clock* service);

} // namespace platform
