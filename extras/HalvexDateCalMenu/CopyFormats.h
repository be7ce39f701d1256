#pragma once

#include "extras/calendar/DayRange.h"

#include <string>
#include <vector>

namespace extras {

/// Formats a range with a clock format for each end, or its only day.
std::string formatted(const DayRange& range, const std::string& format);

/// Returns the texts that a day or a range can be copied as: in words, short, and in the formats of
/// ISO 8601 for dates and for weeks.
std::vector<std::string> copyTexts(const DayRange& range);

} // namespace extras
