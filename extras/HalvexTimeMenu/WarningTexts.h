#pragma once

#include "platform/Preferences.h"
#include "warnings/WarningKeeper.h"
#include "warnings/WarningTime.h"

#include <cstdint>
#include <string>
#include <vector>

namespace extras {

/// Returns the title of a warning in the user's language: the translation of a title that is
/// shipped, any other title unchanged. Empty for an empty title.
std::string shownWarningTitle(const std::string& title);

/// Returns when a warning rings, as a sentence: "Every hour", "At 17:30", "In 20 minutes".
std::string shownWarningTime(const warnings::WarningTime& time);

/// Returns the title of a warning or, if it has none, when it rings. Never empty.
std::string shownWarningName(const warnings::Warning& warning);

/// Returns the time of day at @p instant, with the weekday unless that is the day of @p now or less
/// than twelve hours away.
std::string shownInstant(std::int64_t instant, std::int64_t now);

/// Returns the time until @p instant, rounded up to minutes: "1 h 5 min", "2 h", "12 min", but
/// "40 s" in the last minute.
std::string shownTimeLeft(std::int64_t instant, std::int64_t now);

/// The notifications of the clock and of the background application, which reads the clock's
/// translations and preferences. Main thread only.
class WarningTexts final : public warnings::WarningPresenter {
  public:
    /// @p clockSettings are the preferences of the clock. The string WarningSound is the sound: a
    /// name of the freedesktop sound naming scheme, an absolute path, or empty for silence.
    explicit WarningTexts(platform::Preferences clockSettings);

    platform::UserNotification ringing(const warnings::Warning& warning) const override;
    platform::UserNotification
    missed(const std::vector<warnings::MissedWarning>& missed) const override;

  private:
    std::string sound() const;

    platform::Preferences settings_;
    mutable std::string loggedSound_; ///< that cannot be used
};

} // namespace extras
