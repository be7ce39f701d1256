#include "extras/HalvexDateCalMenu/CopyFormats.h"

#include "extras/calendar/CalendarTexts.h"
#include "extras/clock/ClockFormat.h"
#include "extras/shared/Texts.h"

namespace extras {
namespace {

constexpr const char* kIsoDate = "%Y-%m-%d";
constexpr const char* kIsoWeekDate = "%G-W%V-%u";

/// Returns an interval as ISO 8601 writes it.
std::string isoText(const DayRange& range, const char* format) {
    std::string first = calendar_texts::text(format, range.first);
    return range.days() == 1 ? first : first + '/' + calendar_texts::text(format, range.last);
}

} // namespace

std::string formatted(const DayRange& range, const std::string& format) {
    std::string first = calendar_texts::text(format, range.first);
    if (range.days() == 1)
        return first;
    // Translators: the first and the last day of a range.
    return fill(tr("%1 – %2"), {first, calendar_texts::text(format, range.last)});
}

std::vector<std::string> copyTexts(const DayRange& range) {
    return {formatted(range, clock_format::fullDate()), formatted(range, "%x"),
            isoText(range, kIsoDate), isoText(range, kIsoWeekDate)};
}

} // namespace extras
