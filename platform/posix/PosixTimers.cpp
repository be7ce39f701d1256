#include "platform/posix/PosixTimers.h"

#include "platform/Defaults.h"
#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/Operation.h"
#include "platform/TimeZones.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <sys/timerfd.h>
#include <unistd.h>
#include <utility>

namespace platform::posix {
namespace {

constexpr std::int64_t kNanosecondsPerSecond = 1'000'000'000;

std::int64_t read(clockid_t clock) {
    timespec time{};
    clock_gettime(clock, &time);
    return time.tv_sec * kNanosecondsPerSecond + time.tv_nsec;
}

/// The elapsed time is read first. If the thread is interrupted in between, timers fire a little
/// late; in the other order, they would fire too early and wake the process twice.
TimerQueue::Now now() {
    const std::int64_t elapsed = read(CLOCK_BOOTTIME);
    return {elapsed, read(CLOCK_REALTIME)};
}

} // namespace

class PosixTimers::Running final : public Watch {
  public:
    Running(PosixTimers& timers, std::shared_ptr<Timer> timer)
        : timers_(timers), timer_(std::move(timer)) {}
    ~Running() override {
        timers_.queue_.remove(timer_);
        timers_.updateSources();
    }

  private:
    PosixTimers& timers_;
    std::shared_ptr<Timer> timer_;
};

std::unique_ptr<Watch> PosixTimers::start(Timer timer, std::function<void()> handler) {
    return guardedStep([&]() -> std::unique_ptr<Watch> {
        const auto started = std::make_shared<Timer>(std::move(timer));
        started->owner = currentOwner();
        started->handler = std::move(handler);
        auto running = std::make_unique<Running>(*this, started);
        queue_.add(started, now());
        if (updateSources())
            return running;
        logLine("cannot start a timer: %@", std::strerror(errno));
        return nullptr;
    });
}

std::unique_ptr<Watch> PosixTimers::after(Duration delay, Duration tolerance,
                                          std::function<void()> handler) {
    return start({.kind = Timer::Kind::Once,
                  .period = std::max<std::int64_t>(delay.count(), 0),
                  .tolerance = std::max<std::int64_t>(tolerance.count(), 0)},
                 std::move(handler));
}

std::unique_ptr<Watch> PosixTimers::every(Duration period, Duration tolerance,
                                          std::function<void()> handler) {
    if (period < std::chrono::milliseconds(1)) {
        logLine("cannot start a timer: its period is %d ns, less than 1 ms", period.count());
        return nullptr;
    }
    return start({.kind = Timer::Kind::Periodic,
                  .period = period.count(),
                  .tolerance = std::clamp<std::int64_t>(tolerance.count(), 0, period.count() / 2)},
                 std::move(handler));
}

std::unique_ptr<Watch> PosixTimers::at(std::int64_t instant, std::function<void()> handler) {
    return start({.kind = Timer::Kind::Clock, .instant = instant}, std::move(handler));
}

std::unique_ptr<Watch> PosixTimers::atLocalTime(std::string_view zone, const CivilTime& local,
                                                std::function<void()> handler) {
    return guardedStep([&]() -> std::unique_ptr<Watch> {
        const auto rules = zone.empty() ? timeZones().local() : timeZones().zone(zone);
        if (rules && rules->instantsOf(local))
            return start(
                {.kind = Timer::Kind::LocalTime, .zone = std::string(zone), .local = local},
                std::move(handler));
        if (rules)
            logLine("cannot start a timer: the year %d is too far away", local.year);
        return nullptr;
    });
}

bool PosixTimers::updateSources() {
    if (queue_.isEmpty()) {
        timerWatch_.reset();
        zoneWatch_.reset();
        timer_ = Descriptor();
        armedFor_ = INT64_MAX;
        return true;
    }
    // Not under the owner of the timer that happens to be the first.
    const auto create = [this] {
        if (!timer_)
            timer_ = Descriptor(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC));
        if (timer_ && !timerWatch_)
            timerWatch_ = mainThread().watchReadable(timer_.get(), [this] { expired(); });
        if (!queue_.hasLocalTimes())
            zoneWatch_.reset();
        else if (!zoneWatch_)
            zoneWatch_ = timeZones().watchLocal([this] { zoneChanged(); });
    };
    if (runGuarded({}, create))
        return timer_ && arm();
    errno = ENOMEM;
    return false;
}

bool PosixTimers::arm() {
    const std::int64_t target = std::max<std::int64_t>(queue_.nextTarget(now()), 1);
    if (target == armedFor_)
        return true;
    itimerspec times{};
    if (target != INT64_MAX)
        times.it_value = {target / kNanosecondsPerSecond, target % kNanosecondsPerSecond};
    constexpr int kFlags = TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET;
    // If the clock has been set in the meantime, this also returns an error, but sets the timer.
    if (timerfd_settime(timer_.get(), kFlags, &times, nullptr) != 0 && errno != ECANCELED)
        return false;
    armedFor_ = target;
    return true;
}

void PosixTimers::expired() {
    std::uint64_t count = 0;
    const bool wasSet = ::read(timer_.get(), &count, sizeof count) < 0 && errno == ECANCELED;
    armedFor_ = 0; // whatever comes next has to be set again
    guardedStep([&] {
        if (wasSet)
            queue_.clockChanged(now());
        queue_.markDue(now());
    });
    updateSources(); // before the handlers, which may run a main loop
    queue_.runDue();
    updateSources();
}

void PosixTimers::zoneChanged() {
    guardedStep([&] { queue_.clockChanged(now()); });
    updateSources();
}

} // namespace platform::posix

// Never destroyed: items are destroyed, and stop their timers, after main.
platform::Timers& platform::defaults::timers() {
    static NeverDestroyed<posix::PosixTimers> timers;
    return timers.get();
}
