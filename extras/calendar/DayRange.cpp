#include "extras/calendar/DayRange.h"

#include <algorithm>

using namespace std::chrono;

namespace extras {

DayRange DayRange::between(sys_days one, sys_days other) {
    return {std::min(one, other), std::max(one, other)};
}

int DayRange::workingDays(const WeekRules& rules) const {
    const int weeks = days() / 7;
    int result = weeks * static_cast<int>(7 - rules.weekend.count());
    for (sys_days day = first + std::chrono::days(weeks * 7); day <= last;
         day += std::chrono::days(1))
        result += rules.isWeekend(day) ? 0 : 1;
    return result;
}

} // namespace extras
