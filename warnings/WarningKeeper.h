#pragma once

#include "platform/FileManager.h"
#include "platform/UserNotifications.h"
#include "platform/base/Watch.h"
#include "warnings/Warning.h"
#include "warnings/WarningStore.h"

#include <chrono>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace warnings {

/// The identifier of the action that sets a warning again for kAgainMinutes later.
inline constexpr const char* kAgainAction = "again";
inline constexpr int kAgainMinutes = 5;

/// Times at which a warning should have rung while no program could ring it.
struct MissedWarning {
    Warning warning;
    std::int64_t first = 0; ///< the first of them
    int count = 0;
};

/// The texts and the sound of notifications, in the user's language. Main thread only.
class WarningPresenter : platform::NonCopyable {
  public:
    virtual ~WarningPresenter();

    /// Returns the notification for a warning that rings now; it offers kAgainAction.
    virtual platform::UserNotification ringing(const Warning& warning) const = 0;
    /// Returns the one notification for all warnings that were missed.
    virtual platform::UserNotification missed(const std::vector<MissedWarning>& missed) const = 0;
};

/// Rings the warnings of a store. Any number of programs can have a keeper for the same file: each
/// warning is rung by one of them. The one that rings holds a lock, which the system releases if it
/// is killed, until the file says that the warning has rung. The others then try again, first after
/// five seconds, and find nothing to do or ring the warning themselves.
///
/// So no warning is lost. A program that is killed after the desktop has accepted the notification
/// and before that is recorded, usually some milliseconds later, leaves a warning that rings twice.
///
/// A warning that is more than a minute late counts as missed: all missed warnings are reported by
/// one notification. If the desktop does not show notifications, beeps. If the file cannot be
/// written, keeps the lock and tries again after one minute, then after two, up to an hour. Wakes
/// up only when a warning is due. Main thread only.
class WarningKeeper : platform::NonCopyable {
  public:
    /// Rings what is due, and follows the file, the clock and the system's time zone from then on.
    /// Keeps references to @p store and @p presenter.
    WarningKeeper(WarningStore& store, const WarningPresenter& presenter);
    ~WarningKeeper();

    /// Returns whether warnings are set, or one that has rung can still be set again: its
    /// notification is open, for an hour at most.
    bool hasWork();
    /// Sets the function to call when hasWork() may have become false.
    void setIdleHandler(std::function<void()> handler) { idle_ = std::move(handler); }

    /// Rings what is due, and schedules the next call. Called automatically after every change.
    void check();

  private:
    using Instants = std::map<std::string, std::int64_t>; // by the identifier of a warning

    std::vector<Warning> unrungWarnings(std::int64_t now);
    bool isAnyDue(std::int64_t now);
    bool takeLock();
    void ring(std::int64_t now);
    void post(platform::UserNotification notification, const Instants& instants);
    void handle(const std::string& key, platform::UserNotificationEvent event);
    void ringAgain(const std::string& title);
    void record();
    void retryAfter(std::chrono::seconds delay);
    void schedule(std::int64_t now);
    void reportIdle();

    WarningStore& store_;
    const WarningPresenter& presenter_;
    std::shared_ptr<int> self_ = std::make_shared<int>(); ///< the observer of the notifications
    std::function<void()> idle_;

    Instants rung_;                           ///< rung, but not yet recorded in the file
    std::map<std::string, Instants> waiting_; ///< those of them the desktop has not yet accepted
    std::set<std::string> open_;              ///< keys of notifications on the screen
    std::unique_ptr<platform::HeldFileLock> lock_;
    std::chrono::seconds busyDelay_;
    std::chrono::seconds writeDelay_;
    bool hasLoggedLock_ = false;

    std::unique_ptr<platform::Watch> due_;     ///< the clock reaches the next warning
    std::unique_ptr<platform::Watch> elapsed_; ///< the same unless the clock is set back
    std::unique_ptr<platform::Watch> retry_;
    std::unique_ptr<platform::Watch> patience_; ///< with the desktop
    std::unique_ptr<platform::Watch> closing_;
    std::unique_ptr<platform::Watch> storeWatch_;
    std::unique_ptr<platform::Watch> zoneWatch_;
};

} // namespace warnings
