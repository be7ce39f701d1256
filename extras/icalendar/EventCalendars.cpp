#include "extras/icalendar/EventCalendars.h"

#include <utility>

namespace extras {

struct EventCalendars::State {
    std::string folder;
};

EventCalendars::EventCalendars(std::string folder)
    : state_(std::make_unique<State>(State{std::move(folder)})) {}

EventCalendars::~EventCalendars() = default;

std::vector<CalendarEvent> EventCalendars::between(std::chrono::sys_days /*first*/,
                                                   std::chrono::sys_days /*last*/) {
    return {};
}

std::vector<std::string> EventCalendars::brokenFiles() const {
    return {};
}

std::unique_ptr<platform::Watch> EventCalendars::onChange(std::function<void()> /*handler*/) {
    return nullptr;
}

} // namespace extras
