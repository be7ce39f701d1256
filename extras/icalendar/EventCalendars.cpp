#include "extras/icalendar/EventCalendars.h"

#include "extras/icalendar/CalendarFolder.h"
#include "extras/icalendar/Expansion.h"
#include "platform/FileManager.h"
#include "platform/Log.h"
#include "platform/TimeZones.h"

#include <algorithm>
#include <utility>

using std::chrono::sys_days;

namespace extras {
namespace {

constexpr std::size_t kMaximumEvents = 20'000;
constexpr sys_days kFirstDay = std::chrono::year(0) / 1 / 1;
constexpr sys_days kLastDay = std::chrono::year(9999) / 12 / 31;

/// Several watches as one.
struct Watches final : platform::Watch {
    std::vector<std::unique_ptr<platform::Watch>> list;
};

} // namespace

struct EventCalendars::State {
    explicit State(std::string path) : folder(std::move(path)) {}

    icalendar::CalendarFolder folder;
    bool hasTooMany = false;
};

EventCalendars::EventCalendars(std::string folder)
    : state_(std::make_unique<State>(std::move(folder))) {}

EventCalendars::~EventCalendars() = default;

std::vector<CalendarEvent> EventCalendars::between(sys_days first, sys_days last) {
    state_->folder.update();
    icalendar::Expansion expansion(platform::timeZones(), std::max(first, kFirstDay),
                                   std::min(last, kLastDay), kMaximumEvents);
    for (auto& [name, file] : state_->folder.files())
        expansion.add(file.calendar, name.substr(0, name.rfind('.')));
    if (expansion.isIncomplete() && !state_->hasTooMany)
        platform::logLine("ignoring events in %@: more than %d in the days to show",
                          state_->folder.path(), kMaximumEvents);
    state_->hasTooMany = expansion.isIncomplete();
    return expansion.take();
}

std::vector<std::string> EventCalendars::brokenFiles() const {
    std::vector<std::string> names;
    for (const auto& [name, file] : state_->folder.files())
        if (file.isBroken)
            names.push_back(name);
    return names;
}

std::unique_ptr<platform::Watch> EventCalendars::onChange(std::function<void()> handler) {
    auto files = platform::fileManager().watchFile(state_->folder.path(), handler);
    if (!files)
        return nullptr;
    auto watches = std::make_unique<Watches>();
    watches->list.push_back(std::move(files));
    watches->list.push_back(platform::timeZones().watchLocal(std::move(handler)));
    return watches;
}

} // namespace extras
