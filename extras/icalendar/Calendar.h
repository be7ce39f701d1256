#pragma once

#include "extras/icalendar/Moment.h"
#include "extras/icalendar/RecurrenceRule.h"

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace extras::icalendar {

/// When an event takes place besides the first time.
struct Repetition {
    std::vector<RecurrenceRule> rules;
    std::vector<Moment> added;
    std::vector<Moment> excluded; ///< those without a time exclude all of their day
};

struct Event {
    std::string title;
    Moment start;
    Moment end; ///< not part of the event, unless it is its start
    bool isHoliday = false;
    std::unique_ptr<Repetition> repetition; ///< null if it takes place once
};

/// The contents of an iCalendar file.
struct Calendar {
    std::string name; ///< empty if the file does not contain one
    Zones zones;
    std::vector<Event> events;
    std::int64_t countingSteps = 10'000'000; ///< that remain for RecurrenceRule::lastCounted
};

struct ParsedCalendar {
    Calendar calendar;
    std::string defect;      ///< the first reason why something was not read, or empty
    std::string unsupported; ///< the first reason why an event does not repeat, or empty
};

/// Reads the events of an iCalendar file, except those that are cancelled. An event that replaces
/// one of another event's repetitions becomes an event of its own, and is excluded there. Any bytes
/// are accepted; after a syntax error, returns what came before it. An empty file, which may be one
/// that is about to be written, has no events and no defect. At most 20,000 events and
/// 20,000 added and excluded dates are read.
ParsedCalendar parseCalendar(std::string_view text);

} // namespace extras::icalendar
