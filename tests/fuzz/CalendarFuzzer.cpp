#include "extras/icalendar/Expansion.h"
#include "platform/base/Utf8.h"
#include "testing/ManualTimeZones.h"
#include "tests/fuzz/Support.h"

#include <algorithm>
#include <vector>

using extras::CalendarEvent;
using fuzz::require;
using std::chrono::sys_days;
namespace icalendar = extras::icalendar;

namespace {

class Zones {
  public:
    Zones() {
        zones.add("Europe/Berlin", "CET-1CEST,M3.5.0,M10.5.0/3");
        zones.add("Pacific/Apia", "WST-14");
        zones.setLocal("Europe/Berlin");
    }

    halvextest::ManualTimeZones zones;
};

void requireOneLine(std::string_view text) {
    require(text.size() <= 203, "a text is too long");
    while (!text.empty()) {
        const std::size_t length = platform::utf8SequenceLength(text);
        require(length > 0 && static_cast<unsigned char>(text.front()) >= 0x20,
                "a text is not one line of UTF-8");
        text.remove_prefix(length);
    }
}

void requireValid(const CalendarEvent& event, sys_days first, sys_days last) {
    require(event.day >= first && event.day <= last, "an event is on another day");
    require(!event.minuteOfDay || (*event.minuteOfDay >= 0 && *event.minuteOfDay < 24 * 60),
            "an event is at an impossible time");
    requireOneLine(event.title);
    requireOneLine(event.calendar);
}

} // namespace

// Any bytes are a calendar with a defect or without. Its events are the same whether they are found
// for all days or for a part of them.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static Zones zones;
    constexpr sys_days kFirst = std::chrono::year(2026) / 1 / 1;
    constexpr sys_days kMiddle = std::chrono::year(2026) / 10 / 25;
    constexpr sys_days kLast = std::chrono::year(2027) / 6 / 30;
    constexpr std::size_t kMaximum = 5'000;

    auto parsed = icalendar::parseCalendar(fuzz::text(data, size));
    const auto eventsOf = [&](sys_days first, sys_days last) {
        icalendar::Expansion expansion(zones.zones, first, last, kMaximum);
        expansion.add(parsed.calendar, "Calendar");
        auto events = expansion.take();
        require(events.size() <= kMaximum, "too many events");
        for (const CalendarEvent& event : events)
            requireValid(event, first, last);
        return events;
    };
    const auto all = eventsOf(kFirst, kLast);
    if (all.size() == kMaximum)
        return 0;
    auto parts = eventsOf(kFirst, kMiddle);
    std::ranges::copy(eventsOf(kMiddle + std::chrono::days(1), kLast), std::back_inserter(parts));
    require(parts.size() == all.size() &&
                std::ranges::is_permutation(all, parts), // events at the same time have no order
            "the events depend on the days that are asked for");
    return 0;
}
