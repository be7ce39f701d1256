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

/// The system's clock, and timers that fire at full seconds and minutes.
class Clock : NonCopyable {
  public:
    virtual ~Clock();

    /// Returns the seconds since 1970-01-01 00:00:00 UTC. Thread-safe.
    virtual std::int64_t now() const = 0;

    /// Converts a time to the system's current time zone. The result's tm_zone stays valid until
    /// the time zone changes. Thread-safe.
    virtual std::tm localTime(std::int64_t secondsSince1970) const = 0;

    /// Blocks the calling thread for at least @p microseconds. Thread-safe.
    virtual void sleep(std::uint64_t microseconds) = 0;

    /// Calls @p handler on the main thread at every full second or minute, starting with the next
    /// one, and immediately after the clock is set, the machine wakes up or the time zone changes.
    /// The process is not woken in between. Exceptions from @p handler are logged with the owner's
    /// identifier and swallowed. Returns null and logs the reason if the system is out of timers.
    /// Main thread only.
    virtual std::unique_ptr<Watch> tick(TickInterval interval, std::function<void()> handler) = 0;
};

/// Returns the process's clock. The default is the system clock.
Clock& systemClock();
template <>
Clock* exchangeService<Clock>(Clock* service);

} // namespace platform
