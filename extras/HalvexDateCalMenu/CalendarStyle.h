#pragma once

#include "platform/values/Color.h"
#include "platform/values/TextAttributes.h"

namespace extras {

/// The colours and fonts of the month view.
struct CalendarStyle {
    platform::Color text;
    platform::Color secondaryText; ///< weekdays, details
    platform::Color weekendText;
    platform::Color dimmedText; ///< neighbouring months, week numbers
    platform::Color separator;
    platform::Color hover;

    platform::Color today; ///< behind today's number
    platform::Color todayText;
    platform::Color selection; ///< behind the selected days
    platform::Color selectionEdge;
    platform::Color event; ///< dots
    platform::Color holiday;

    platform::Font heading;
    platform::Font weekday;
    platform::Font day;
    platform::Font todayDay;
    platform::Font weekNumber;
    platform::Font title;
    platform::Font details;
};

/// Returns the style for the current appearance: light or dark, with the user's accent colour,
/// contrast and theme. High contrast ignores the colours of the theme. Main thread only.
CalendarStyle currentCalendarStyle();

} // namespace extras
