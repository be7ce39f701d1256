#include "platform/EventSource.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

class NoEvents final : public EventSource {
    Event currentEvent() const override { return {.clickCount = 0}; }
};

EventSource& noEvents() {
    static NoEvents source;
    return source;
}

constinit ServiceSlot<EventSource> slot{"EventSource", noEvents};

} // namespace

EventSource::~EventSource() = default;

EventSource& eventSource() {
    return slot.get();
}

template <>
EventSource* exchangeService<EventSource>(EventSource* service) {
    return slot.exchange(service);
}

} // namespace platform
