#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/values/CivilTime.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace platform::posix {

/// The timers that are running, and which of them are due. Reads no clock: the caller passes the
/// time. All times are in nanoseconds, and sums stop at the limits of 64 bits.
class TimerQueue : NonCopyable {
  public:
    struct Now {
        std::int64_t elapsed; ///< since the machine's start, including suspend
        std::int64_t clock;   ///< since 1970
    };

    struct Timer {
        enum class Kind { Once, Periodic, Clock, LocalTime };
        Kind kind = Kind::Once;
        std::string owner{};
        std::function<void()> handler{};
        std::int64_t period = 0;    ///< of a Periodic timer, or the delay of one that fires once
        std::int64_t tolerance = 0; ///< earlier and later if Periodic, else only later
        std::int64_t instant = 0;   ///< of a Clock timer, in seconds since 1970
        std::string zone{};         ///< of a LocalTime; empty for the system's
        CivilTime local{};
        /// When to fire: on the clock for Clock and LocalTime, otherwise in elapsed time.
        std::int64_t target = 0;
        /// From when on it may fire because another timer does.
        std::int64_t earliest = 0;
        std::int64_t latest = 0;

        bool isDue = false;
        std::int64_t dueSince = 0; ///< elapsed time
        bool isRunning = false;
        bool isOnClock() const { return kind == Kind::Clock || kind == Kind::LocalTime; }
    };

    /// Starts a timer, with its kind and what that needs filled in.
    void add(const std::shared_ptr<Timer>& timer, Now now);
    void remove(const std::shared_ptr<Timer>& timer);
    /// Plans the timers again after the clock or a zone has changed.
    void clockChanged(Now now);
    /// Marks all timers that may fire, now that the process is awake, and plans their next calls.
    void markDue(Now now);
    /// Runs the handlers of the marked timers, guarded with their owners.
    void runDue();

    bool isEmpty() const { return timers_.empty(); }
    bool hasLocalTimes() const;
    /// Returns when to call markDue, as a time of the clock. INT64_MAX if never.
    std::int64_t nextTarget(Now now) const;

  private:
    static constexpr std::int64_t kNever = INT64_MAX;

    static void plan(Timer& timer, Now now);
    static void planNext(Timer& timer, Now now);
    static void align(Timer& timer, Now now);
    std::shared_ptr<Timer> firstDue() const;

    std::vector<std::shared_ptr<Timer>> timers_;
};

} // namespace platform::posix
