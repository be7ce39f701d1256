#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"
#include "platform/base/Watch.h"
#include "platform/values/CivilTime.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>

namespace platform {

/// Timers that call a handler on the main thread, never from within the call that starts them.
/// Exceptions from a handler are logged with the owner's identifier and swallowed. A handler may
/// destroy its own watch and others, and is not called again while it is still running in a nested
/// main loop.
///
/// The operations return null and log the reason if the system is out of timers. Nothing wakes the
/// process while no timer is running, and timers never wake the machine from suspend. For a display
/// that changes every second or minute, use Clock::tick. Main thread only.
class Timers : NonCopyable {
  public:
    using Duration = std::chrono::nanoseconds;

    virtual ~Timers();

    /// Calls @p handler once, after @p delay and at most @p tolerance later. Time in which the
    /// machine is suspended counts; changes of the clock do not. A delay that ended during suspend
    /// is over when the machine wakes up. A delay of zero or less ends as soon as the main loop
    /// runs; the longest delay never ends. A negative tolerance counts as zero.
    virtual std::unique_ptr<Watch> after(Duration delay, Duration tolerance,
                                         std::function<void()> handler) = 0;

    /// Calls @p handler again and again, the first time after one period. The time from one call to
    /// the next is within @p period ± @p tolerance. Timers with a tolerance are called together
    /// where possible, and settle on times of day that are multiples of the period: with 30 s ± 10
    /// s, on each full minute and half minute, together with the ticks of the clock. With a
    /// tolerance of zero, calls are a whole number of periods after the start. Calls that are
    /// missed, during suspend or because the main thread is busy, are made up for by one. The
    /// tolerance is limited to 0 to half of the period. Returns null and logs this if the period is
    /// less than 1 ms.
    virtual std::unique_ptr<Watch> every(Duration period, Duration tolerance,
                                         std::function<void()> handler) = 0;

    /// Calls @p handler once, when the system's clock has reached @p instant, in seconds since
    /// 1970-01-01 00:00:00 UTC: soon if it is past, also because the clock has been set or the
    /// machine has been suspended. Instants after the year 2261 are never reached.
    virtual std::unique_ptr<Watch> at(std::int64_t instant, std::function<void()> handler) = 0;

    /// Same for a local time in the zone with the name @p zone, or in the system's time zone if
    /// that is empty. Follows changes of the system's time zone; an update of the tz database takes
    /// effect when the next timer fires. If the clocks skip @p local, calls @p handler when they
    /// skip it; if they repeat it, the first time. Fields of @p local may be out of range, such as
    /// the hour 7 of day 32 (see secondsSince1970). Returns null if the zone is unknown, or the
    /// instant does not fit in 64 bits (logged).
    virtual std::unique_ptr<Watch> atLocalTime(std::string_view zone, const CivilTime& local,
                                               std::function<void()> handler) = 0;
};

/// Returns the process's timers. The default uses one timer of the system for all of them.
Timers& timers();
template <>
Timers* exchangeService<Timers>(Timers* service);

} // namespace platform
