#include "platform/posix/TimerQueue.h"

#include "platform/TimeZones.h"
#include "platform/runtime/Guard.h"

#include <algorithm>

namespace platform::posix {
namespace {

constexpr std::int64_t kSecond = 1'000'000'000;

std::int64_t sum(std::int64_t one, std::int64_t other) {
    std::int64_t result = 0;
    if (!__builtin_add_overflow(one, other, &result))
        return result;
    return other < 0 ? INT64_MIN : INT64_MAX;
}

std::int64_t secondsToNanoseconds(std::int64_t seconds) {
    std::int64_t result = 0;
    if (!__builtin_mul_overflow(seconds, kSecond, &result))
        return result;
    return seconds < 0 ? INT64_MIN : INT64_MAX;
}

/// Returns the multiple of @p step closest to @p time.
std::int64_t closestMultiple(std::int64_t time, std::int64_t step) {
    const std::int64_t past = time % step;
    return past * 2 < step ? time - past : sum(time, step - past);
}

} // namespace

/// Chooses a time between the earliest and the latest. For a periodic timer, this is a multiple of
/// its period; if none of them is inside, it fires late, so that one will be inside before long.
void TimerQueue::align(Timer& timer, Now now) {
    if (timer.tolerance == 0 || timer.latest == kNever)
        return;
    const std::int64_t toClock = now.clock - now.elapsed;
    const auto choose = [&](std::int64_t clock) {
        const std::int64_t time = sum(clock, -toClock);
        const bool isInside = time >= timer.earliest && time <= timer.latest;
        if (isInside)
            timer.target = time;
        return isInside;
    };
    const bool isPeriodic = timer.kind == Timer::Kind::Periodic;
    if (isPeriodic && choose(closestMultiple(sum(timer.target, toClock), timer.period)))
        return;
    const std::int64_t latest = sum(timer.latest, toClock);
    if (!isPeriodic && choose(latest - latest % (60 * kSecond)))
        return;
    if (!choose(latest - latest % kSecond))
        timer.target = timer.latest;
}

/// Plans a timer that starts, or fires again, when its target is the time of the last call.
void TimerQueue::plan(Timer& timer, Now now) {
    if (timer.kind == Timer::Kind::LocalTime) {
        const auto rules = timer.zone.empty() ? timeZones().local() : timeZones().zone(timer.zone);
        const auto instants = rules ? rules->instantsOf(timer.local) : std::nullopt;
        if (instants)
            timer.target = secondsToNanoseconds(instants->first);
        return;
    }
    if (timer.kind == Timer::Kind::Clock) {
        timer.target = secondsToNanoseconds(timer.instant);
        return;
    }
    const bool isPeriodic = timer.kind == Timer::Kind::Periodic;
    timer.target = sum(timer.target, timer.period);
    timer.earliest = isPeriodic ? sum(timer.target, -timer.tolerance) : timer.target;
    timer.latest = sum(timer.target, timer.tolerance);
    align(timer, now);
}

/// A late call counts from when it was planned, so that delays do not add up; one that another
/// timer has caused counts from now. Missed calls are skipped.
void TimerQueue::planNext(Timer& timer, Now now) {
    if (timer.kind != Timer::Kind::Periodic) {
        timer.target = timer.earliest = timer.latest = kNever;
        return;
    }
    timer.target = std::min(timer.target, now.elapsed);
    timer.target += (now.elapsed - timer.target) / timer.period * timer.period;
    plan(timer, now);
}

void TimerQueue::add(const std::shared_ptr<Timer>& timer, Now now) {
    timers_.push_back(timer);
    if (!timer->isOnClock())
        timer->target = now.elapsed;
    plan(*timer, now);
}

void TimerQueue::remove(const std::shared_ptr<Timer>& timer) {
    std::erase(timers_, timer);
    timer->isDue = false;
    if (!timer->isRunning)
        timer->handler = nullptr; // its code may be unloaded before the last reference is dropped
}

void TimerQueue::clockChanged(Now now) {
    for (const auto& timer : timers_) {
        if (timer->target == kNever && timer->latest == kNever)
            continue;
        if (timer->kind == Timer::Kind::LocalTime)
            plan(*timer, now);
        if (timer->kind != Timer::Kind::Periodic || timer->tolerance == 0)
            continue;
        timer->target = timer->earliest + timer->tolerance;
        align(*timer, now);
    }
}

void TimerQueue::markDue(Now now) {
    for (const auto& timer : timers_) {
        if (timer->kind == Timer::Kind::LocalTime && timer->target != kNever)
            plan(*timer, now); // the zone's rules may have changed
        const std::int64_t from = timer->isOnClock() ? timer->target : timer->earliest;
        if (from == kNever || from > (timer->isOnClock() ? now.clock : now.elapsed))
            continue;
        timer->isDue = true;
        timer->dueSince =
            timer->isOnClock() ? sum(timer->target, now.elapsed - now.clock) : timer->target;
        planNext(*timer, now);
    }
}

std::shared_ptr<TimerQueue::Timer> TimerQueue::firstDue() const {
    std::shared_ptr<Timer> first;
    for (const auto& timer : timers_)
        if (timer->isDue && !timer->isRunning && (!first || timer->dueSince < first->dueSince))
            first = timer;
    return first;
}

void TimerQueue::runDue() {
    while (const auto timer = firstDue()) {
        timer->isDue = false;
        timer->isRunning = true;
        if (timer->kind != Timer::Kind::Periodic)
            std::erase(timers_, timer);
        runGuarded(timer->owner, timer->handler);
        timer->isRunning = false;
        const bool isOver = std::ranges::find(timers_, timer) == timers_.end();
        if (isOver)
            timer->handler = nullptr;
    }
}

bool TimerQueue::hasLocalTimes() const {
    return std::ranges::any_of(timers_, [](const auto& timer) {
        return timer->kind == Timer::Kind::LocalTime && timer->zone.empty();
    });
}

std::int64_t TimerQueue::nextTarget(Now now) const {
    std::int64_t next = kNever;
    for (const auto& timer : timers_) {
        const bool shifts = !timer->isOnClock() && timer->target != kNever;
        next = std::min(next, shifts ? sum(timer->target, now.clock - now.elapsed) : timer->target);
    }
    return next;
}

} // namespace platform::posix
