#pragma once

#include "platform/Timers.h"
#include "platform/posix/Descriptor.h"
#include "platform/posix/TimerQueue.h"

namespace platform::posix {

/// Timers behind one timer of the system on CLOCK_REALTIME, which also reports when the clock is
/// set and when the machine wakes up. It exists while at least one of them is running.
class PosixTimers final : public Timers {
  public:
    std::unique_ptr<Watch> after(Duration delay, Duration tolerance,
                                 std::function<void()> handler) override;
    std::unique_ptr<Watch> every(Duration period, Duration tolerance,
                                 std::function<void()> handler) override;
    std::unique_ptr<Watch> at(std::int64_t instant, std::function<void()> handler) override;
    std::unique_ptr<Watch> atLocalTime(std::string_view zone, const CivilTime& local,
                                       std::function<void()> handler) override;

  private:
    class Running;
    using Timer = TimerQueue::Timer;

    std::unique_ptr<Watch> start(Timer timer, std::function<void()> handler);
    /// Creates the system's timer and the watch of the local zone, or removes them if they are not
    /// needed. Returns false and sets errno if the system is out of timers.
    bool updateSources();
    /// Sets the system's timer to the queue's next target.
    bool arm();
    void expired();
    void zoneChanged();

    TimerQueue queue_;
    Descriptor timer_;
    std::unique_ptr<Watch> timerWatch_;
    std::unique_ptr<Watch> zoneWatch_;
    std::int64_t armedFor_ = INT64_MAX;
};

} // namespace platform::posix
