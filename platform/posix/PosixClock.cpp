#include "platform/posix/PosixClock.h"

#include "platform/Defaults.h"
#include "platform/Log.h"
#include "platform/Operation.h"
#include "platform/base/NeverDestroyed.h"
#include "platform/posix/Descriptor.h"

#include <cerrno>
#include <chrono>
#include <cstring>
#include <sys/timerfd.h>
#include <thread>
#include <utility>

namespace platform::posix {
namespace {

std::int64_t secondsIn(TickInterval interval) {
    return interval == TickInterval::Minute ? 60 : 1;
}

/// A timer and a watch on the time zone's file.
class Ticker final : public Watch {
  public:
    Ticker(TickInterval interval, std::function<void()> handler)
        : interval_(interval),
          handler_(std::make_shared<std::function<void()>>(std::move(handler))),
          timer_(timerfd_create(CLOCK_REALTIME, TFD_NONBLOCK | TFD_CLOEXEC)) {}

    bool start(const Clock& clock, const std::string& zoneFile) {
        if (!timer_ || !arm(clock))
            return false;
        timerWatch_ = mainThread().watchReadable(timer_.get(), [this, &clock] { expired(clock); });
        zoneWatch_ = watchLocalZone(zoneFile, [handler = handler_] { (*handler)(); });
        return true;
    }

  private:
    bool arm(const Clock& clock) const {
        const std::int64_t period = secondsIn(interval_);
        itimerspec times{};
        times.it_value.tv_sec = clock.now() / period * period + period;
        times.it_interval.tv_sec = period;
        return timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME | TFD_TIMER_CANCEL_ON_SET, &times,
                               nullptr) == 0;
    }

    void expired(const Clock& clock) {
        std::uint64_t count = 0;
        const bool wasSet = ::read(timer_.get(), &count, sizeof count) < 0 && errno == ECANCELED;
        if (wasSet && !arm(clock))
            logLine("cannot set the clock timer: %@", std::strerror(errno));
        if (wasSet || count > 0) {
            const auto handler = handler_; // a copy, because it may destroy this ticker
            (*handler)();
        }
    }

    TickInterval interval_;
    std::shared_ptr<std::function<void()>> handler_;
    Descriptor timer_;
    std::unique_ptr<Watch> timerWatch_;
    std::unique_ptr<Watch> zoneWatch_;
};

} // namespace

PosixClock::PosixClock(std::string zoneFile) : zoneFile_(std::move(zoneFile)) {
    tzset();
}

// Does not call time(): when a timer fires, its coarse clock may still be in the previous second.
std::int64_t PosixClock::now() const {
    timespec time{};
    clock_gettime(CLOCK_REALTIME, &time);
    return time.tv_sec;
}

std::tm PosixClock::localTime(std::int64_t secondsSince1970) const {
    std::tm local{};
    localtime_r(&secondsSince1970, &local);
    return local;
}

void PosixClock::sleep(std::uint64_t microseconds) {
    std::this_thread::sleep_for(std::chrono::microseconds(microseconds));
}

std::unique_ptr<Watch> PosixClock::tick(TickInterval interval, std::function<void()> handler) {
    return guardedStep([&]() -> std::unique_ptr<Watch> {
        auto ticker = std::make_unique<Ticker>(interval, std::move(handler));
        if (ticker->start(*this, zoneFile_))
            return ticker;
        logLine("cannot create a clock timer: %@", std::strerror(errno));
        return nullptr;
    });
}

} // namespace platform::posix

// Never destroyed: threads that outlive main may be sleeping in it.
platform::Clock& platform::defaults::clock() {
    static NeverDestroyed<posix::PosixClock> clock;
    return clock.get();
}
