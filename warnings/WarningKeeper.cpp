#include "warnings/WarningKeeper.h"

#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/TimeZones.h"
#include "platform/Timers.h"

#include <algorithm>
#include <optional>
#include <utility>

using namespace std::chrono_literals;
using platform::timers;
using platform::UserNotification;
using platform::UserNotificationEvent;

namespace warnings {
namespace {

constexpr std::int64_t kLate = 60; // seconds
/// The clock has been set back, not only corrected, if it is this far before a past time.
constexpr std::int64_t kSetBack = std::int64_t{24} * 60 * 60;
constexpr std::chrono::seconds kFirstBusyDelay = 5s;
constexpr std::chrono::seconds kMaximumBusyDelay = 10min;
constexpr std::chrono::seconds kFirstWriteDelay = 1min;
constexpr std::chrono::seconds kMaximumWriteDelay = 1h;
constexpr std::chrono::seconds kDesktopPatience = 30s;
constexpr std::chrono::seconds kOpenTime = 1h;
constexpr const char* kMissedKey = "missed-warnings";
constexpr const char* kLockSuffix = ".ringing";

std::chrono::seconds doubled(std::chrono::seconds& delay, std::chrono::seconds maximum) {
    return std::exchange(delay, std::min(2 * delay, maximum));
}

std::optional<Occurrences> dueTimes(const Warning& warning, std::int64_t now) {
    return occurrencesUntil(warning.time, warning.since, now, platform::timeZones().local());
}

} // namespace

WarningPresenter::~WarningPresenter() = default;

WarningKeeper::WarningKeeper(WarningStore& store, const WarningPresenter& presenter)
    : store_(store), presenter_(presenter), busyDelay_(kFirstBusyDelay),
      writeDelay_(kFirstWriteDelay), storeWatch_(store.onChange([this] { check(); })),
      zoneWatch_(platform::timeZones().watchLocal([this] { check(); })) {
    check();
}

WarningKeeper::~WarningKeeper() = default;

bool WarningKeeper::hasWork() {
    return !rung_.empty() || !open_.empty() || !store_.warnings().empty();
}

void WarningKeeper::check() {
    const std::int64_t now = platform::systemClock().now();
    retry_.reset();
    if (isAnyDue(now) && takeLock())
        ring(now);
    record();
    schedule(now);
    reportIdle();
}

/// Returns the warnings that remain once rung_ has been recorded.
std::vector<Warning> WarningKeeper::unrungWarnings(std::int64_t now) {
    auto warnings = store_.warnings();
    const auto isInFuture = [&](const Warning& one) { return one.since > now + kSetBack; };
    if (std::ranges::any_of(warnings, isInFuture) && store_.limitSince(now))
        warnings = store_.warnings();
    std::erase_if(warnings, [&](const Warning& one) {
        return !one.time.isRecurring() && rung_.contains(one.identifier);
    });
    for (Warning& warning : warnings)
        if (const auto found = rung_.find(warning.identifier); found != rung_.end())
            warning.since = std::max(warning.since, found->second);
    return warnings;
}

bool WarningKeeper::isAnyDue(std::int64_t now) {
    return std::ranges::any_of(unrungWarnings(now), [&](const Warning& warning) {
        return dueTimes(warning, now).has_value();
    });
}

/// Returns false if another keeper is ringing. A lock that cannot be used must not silence the
/// warnings.
bool WarningKeeper::takeLock() {
    const std::string file = store_.file();
    if (lock_ || file.empty())
        return true;
    auto result = platform::fileManager().lockFile(file + kLockSuffix);
    if (result.isBusy) {
        retryAfter(doubled(busyDelay_, kMaximumBusyDelay));
        return false;
    }
    if (!result && !std::exchange(hasLoggedLock_, true))
        platform::logLine("cannot lock %@: %@", file + kLockSuffix, result.reason);
    busyDelay_ = kFirstBusyDelay;
    lock_ = std::move(result.lock);
    return true;
}

/// Reads the warnings again, because another keeper may have rung them before it lost the lock.
void WarningKeeper::ring(std::int64_t now) {
    std::vector<MissedWarning> missed;
    Instants missedInstants;
    for (const Warning& warning : unrungWarnings(now)) {
        const auto times = dueTimes(warning, now);
        if (!times)
            continue;
        const bool isInTime = now - times->last <= kLate;
        const int missedCount = times->count - (isInTime ? 1 : 0);
        if (missedCount > 0)
            missed.push_back({warning, times->first, missedCount});
        if (!isInTime) {
            missedInstants.emplace(warning.identifier, now);
            continue;
        }
        UserNotification notification = presenter_.ringing(warning);
        notification.key = warning.identifier;
        notification.handler = [this, title = warning.title](const std::string& action) {
            if (action == kAgainAction)
                ringAgain(title);
        };
        post(std::move(notification), {{warning.identifier, now}});
    }
    if (missed.empty())
        return;
    UserNotification notification = presenter_.missed(missed);
    notification.key = kMissedKey;
    post(std::move(notification), missedInstants);
}

void WarningKeeper::post(UserNotification notification, const Instants& instants) {
    const std::string key = notification.key;
    notification.observer = self_;
    notification.eventHandler = [this, key](UserNotificationEvent event) { handle(key, event); };
    for (const auto& [identifier, instant] : instants)
        rung_[identifier] = std::max(rung_[identifier], instant);
    if (!platform::userNotifications().post(notification))
        return platform::systemLog().beep();
    waiting_[key].insert(instants.begin(), instants.end());
    patience_ = timers().after(kDesktopPatience, 1s, [this] {
        waiting_.clear();
        check();
    });
}

void WarningKeeper::handle(const std::string& key, UserNotificationEvent event) {
    waiting_.erase(key);
    if (waiting_.empty())
        patience_.reset();
    if (event == UserNotificationEvent::Shown) {
        open_.insert(key);
        closing_ = timers().after(kOpenTime, 1min, [this] {
            open_.clear();
            reportIdle();
        });
    } else {
        open_.erase(key);
        if (open_.empty())
            closing_.reset();
    }
    record();
    reportIdle();
}

void WarningKeeper::ringAgain(const std::string& title) {
    const WarningTime time{WarningTime::Kind::Delay, kAgainMinutes};
    if (!store_.add(title, time, platform::systemClock().now()))
        platform::systemLog().beep();
    check();
}

/// Records what the desktop has accepted.
void WarningKeeper::record() {
    Instants accepted = rung_;
    for (const auto& [key, instants] : waiting_)
        for (const auto& [identifier, instant] : instants)
            accepted.erase(identifier);
    if (!accepted.empty()) {
        if (!store_.recordRung(accepted))
            return retryAfter(doubled(writeDelay_, kMaximumWriteDelay));
        writeDelay_ = kFirstWriteDelay;
        std::erase_if(rung_, [&](const auto& entry) { return accepted.contains(entry.first); });
    }
    if (rung_.empty())
        lock_.reset();
}

void WarningKeeper::retryAfter(std::chrono::seconds delay) {
    retry_ = timers().after(delay, 1s, [this] { check(); });
}

void WarningKeeper::schedule(std::int64_t now) {
    const auto rules = platform::timeZones().local();
    std::optional<std::int64_t> next;
    for (const Warning& warning : unrungWarnings(now)) {
        const auto due = nextOccurrence(warning.time, warning.since, rules);
        if (due && *due > now)
            next = std::min(next.value_or(*due), *due);
    }
    due_.reset();
    elapsed_.reset();
    if (!next)
        return;
    due_ = timers().at(*next, [this] { check(); });
    // Does not fire unless the clock is set back, because the other timer restarts both.
    elapsed_ = timers().after(std::chrono::seconds(*next - now) + 2s, 1min, [this] { check(); });
}

void WarningKeeper::reportIdle() {
    if (idle_ && !hasWork())
        idle_();
}

} // namespace warnings
