#pragma once

#include "extras/calendar/WeekRules.h"
#include "platform/Preferences.h"

#include <optional>
#include <set>
#include <string>
#include <string_view>

namespace extras {

/// The calendar's preferences; docs/preferences.md describes them.
struct CalendarSettings {
    enum class Title { Icon, Date, IconAndDate };

    Title title = Title::Icon;
    std::string format; ///< of the date in the title
    WeekRules rules;
    std::optional<WeekNumbering> weekNumbers; ///< std::nullopt hides them
    int months = 1;                           ///< side by side
    std::string copyFormat;
    std::string program; ///< the identifier of a desktop entry; empty for the desktop's choice
};

/// Reads the calendar's preferences. An invalid value is logged once and replaced by its default.
/// Main thread only.
class CalendarSettingsReader {
  public:
    explicit CalendarSettingsReader(platform::Preferences preferences);

    CalendarSettings read();

  private:
    std::string format(std::string_view key, const std::string& fallback);
    WeekRules rules();
    void logInvalid(std::string_view key, const std::string& reason);

    platform::Preferences preferences_;
    std::set<std::string> logged_;
};

} // namespace extras
