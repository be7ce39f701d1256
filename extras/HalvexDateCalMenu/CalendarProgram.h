#pragma once

#include <optional>
#include <string>

namespace extras {

/// The desktop's calendar program.
struct CalendarProgram {
    std::string identifier; ///< of its desktop entry
    std::string name;       ///< user-visible
};

/// Returns the program with the identifier @p preferred. If that is empty or not installed, which
/// is logged once until it changes, returns the default application for calendar files, or
/// std::nullopt if no such application is installed. Main thread only.
std::optional<CalendarProgram> calendarProgram(const std::string& preferred);

} // namespace extras
