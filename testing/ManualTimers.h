#pragma once

#include "platform/Clock.h"
#include "platform/TimeZones.h"
#include "platform/Timers.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace halvextest {

/// Timers for which time passes only in advance. Tolerances are recorded, but not used.
class ManualTimers final : public platform::Timers {
  public:
    struct Running {
        Duration due{0};    ///< since the start of the test
        Duration period{0}; ///< zero if it fires once
        Duration tolerance{0};
        std::optional<std::int64_t> instant{}; ///< on systemClock(), instead of the others
        std::string zone{};                    ///< of a local time
        std::optional<platform::CivilTime> local{};
        std::string owner{};
        std::function<void()> handler{};
    };

    /// Lets time pass and calls the handlers whose time has come, in that order. Does not move the
    /// clock, which belongs to another service; with a duration of zero, calls the handlers that
    /// are due after the clock or a zone has been set.
    void advance(Duration duration) {
        const Duration end = now_ + duration;
        while (const auto next = firstDue(end)) {
            const bool isPeriodic = next->period.count() > 0;
            if (!next->instant)
                now_ = std::max(now_, next->due);
            next->due += next->period;
            if (!isPeriodic)
                std::erase(running_, next);
            const auto handler = next->handler; // it may destroy its watch
            platform::runGuarded(next->owner, handler);
        }
        now_ = end;
    }
    /// The timers that have not been stopped and may fire again.
    const std::vector<std::shared_ptr<Running>>& running() const { return running_; }

    std::unique_ptr<platform::Watch> after(Duration delay, Duration tolerance,
                                           std::function<void()> handler) override {
        return start({.due = now_ + std::max(delay, Duration(0)), .tolerance = tolerance}, handler);
    }
    std::unique_ptr<platform::Watch> every(Duration period, Duration tolerance,
                                           std::function<void()> handler) override {
        if (period < std::chrono::milliseconds(1))
            return nullptr;
        return start({.due = now_ + period, .period = period, .tolerance = tolerance}, handler);
    }
    std::unique_ptr<platform::Watch> at(std::int64_t instant,
                                        std::function<void()> handler) override {
        return start({.instant = instant}, handler);
    }
    std::unique_ptr<platform::Watch> atLocalTime(std::string_view zone,
                                                 const platform::CivilTime& local,
                                                 std::function<void()> handler) override {
        Running timer{.instant = 0, .zone = std::string(zone), .local = local};
        return resolve(timer) ? start(std::move(timer), handler) : nullptr;
    }

  private:
    struct Registration final : platform::Watch {
        Registration(ManualTimers& owner, std::shared_ptr<Running> one)
            : timers(owner), timer(std::move(one)) {}
        ~Registration() override { std::erase(timers.running_, timer); }

        ManualTimers& timers;
        std::shared_ptr<Running> timer;
    };

    std::unique_ptr<platform::Watch> start(Running timer, std::function<void()>& handler) {
        timer.owner = platform::currentOwner();
        timer.handler = std::move(handler);
        running_.push_back(std::make_shared<Running>(std::move(timer)));
        return std::make_unique<Registration>(*this, running_.back());
    }
    static bool resolve(Running& timer) {
        auto& zones = platform::timeZones();
        const auto rules = timer.zone.empty() ? zones.local() : zones.zone(timer.zone);
        const auto instants = rules ? rules->instantsOf(*timer.local) : std::nullopt;
        if (instants)
            timer.instant = instants->first;
        return instants.has_value();
    }
    std::shared_ptr<Running> firstDue(Duration end) {
        std::shared_ptr<Running> first;
        for (const auto& timer : running_) {
            if (timer->local)
                resolve(*timer);
            if (timer->instant && *timer->instant <= platform::systemClock().now())
                return timer;
            if (!timer->instant && timer->due <= end && (!first || timer->due < first->due))
                first = timer;
        }
        return first;
    }

    Duration now_{0};
    std::vector<std::shared_ptr<Running>> running_;
    platform::ScopedService<platform::Timers> service_{*this};
};

} // namespace halvextest
