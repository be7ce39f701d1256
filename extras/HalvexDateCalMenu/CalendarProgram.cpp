#include "extras/HalvexDateCalMenu/CalendarProgram.h"

#include "extras/calendar/DefaultApplication.h"
#include "platform/Applications.h"
#include "platform/Log.h"

#include <utility>

using namespace platform;

namespace extras {
namespace {

void logMissing(const std::string& identifier) {
    static std::string logged;
    if (std::exchange(logged, identifier) != identifier)
        logLine("cannot open days with %@: it is not installed", identifier);
}

} // namespace

std::optional<CalendarProgram> calendarProgram(const std::string& preferred) {
    std::string identifier = preferred;
    auto entry = applications().desktopEntry(identifier);
    if (!entry && !preferred.empty())
        logMissing(preferred);
    if (!entry) {
        identifier = defaultApplication("text/calendar");
        entry = applications().desktopEntry(identifier);
    }
    if (!entry)
        return std::nullopt;
    return CalendarProgram{identifier, entry->name};
}

} // namespace extras
