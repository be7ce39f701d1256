#pragma once

#include "platform/expat/ExpatPropertyLists.h"
#include "testing/ManualClock.h"
#include "testing/ManualTimeZones.h"
#include "testing/ManualTimers.h"
#include "testing/RecordingLog.h"
#include "testing/RecordingUserNotifications.h"
#include "tests/support/PollingMainThread.h"
#include "tests/support/ScopedEnvironment.h"
#include "tests/support/TemporaryFolder.h"
#include "warnings/WarningKeeper.h"
#include "warnings/WarningStore.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <string>
#include <vector>

namespace test {

/// Titles of notifications: that of the warning, or "missed" with titles and counts.
class PlainTexts final : public warnings::WarningPresenter {
  public:
    platform::UserNotification ringing(const warnings::Warning& warning) const override {
        return {.title = warning.title, .actions = {{warnings::kAgainAction, "Again"}}};
    }
    platform::UserNotification
    missed(const std::vector<warnings::MissedWarning>& missed) const override {
        std::string title = "missed";
        for (const auto& one : missed)
            title += ' ' + one.warning.title + ' ' + std::to_string(one.count);
        return {.title = title};
    }
};

/// The user's file of warnings in a temporary home folder, on Tuesday at 12:30 UTC.
class WarningFixture : public testing::Test {
  protected:
    static constexpr std::int64_t kNoon = 1795521600; // 2026-11-24 12:00:00 UTC

    /// A program that keeps the warnings.
    struct Program {
        warnings::WarningStore store;
        PlainTexts texts;
        warnings::WarningKeeper keeper{store, texts};
    };

    void SetUp() override {
        platform::expat::install();
        std::filesystem::create_directories(productFolder());
        clock.seconds = kNoon + 1800;
    }
    std::string productFolder() const {
        return folder.file("Library/Application Support/Quorvane Software/Halvex Pro");
    }
    std::string file() const { return productFolder() + "/HalvexRecurringTimers2.plist"; }
    bool set(const std::string& title, const std::string& time) {
        warnings::WarningStore store;
        return store.add(title, *warnings::WarningTime::parse(time), clock.seconds);
    }
    std::vector<std::string> titlesInFile() const {
        std::vector<std::string> titles;
        for (const auto& warning : warnings::WarningStore().warnings())
            titles.push_back(warning.title);
        return titles;
    }
    /// Moves the clock @p minutes after noon UTC, and calls the timers that are due.
    void moveTo(std::int64_t minutes, std::chrono::seconds elapsed = {}) {
        clock.seconds = kNoon + 60 * minutes;
        timers.advance(elapsed);
    }
    std::vector<std::string> shown() const {
        std::vector<std::string> titles;
        for (const auto& notification : notifications.shown)
            titles.push_back(notification.title);
        return titles;
    }
    /// Reports that the desktop shows all notifications, and forgets them.
    std::vector<std::string> takeShown() {
        const auto titles = shown();
        for (const auto& title : titles)
            notifications.report(title, platform::UserNotificationEvent::Shown);
        for (const auto& title : titles)
            notifications.report(title, platform::UserNotificationEvent::Closed);
        return titles;
    }

    TemporaryFolder folder;
    ScopedEnvironment home{"HOME", folder.path().string()};
    halvextest::RecordingLog log;
    PollingMainThread loop;
    halvextest::ManualClock clock;
    halvextest::ManualTimers timers;
    halvextest::ManualTimeZones zones;
    halvextest::RecordingUserNotifications notifications;
};

} // namespace test
