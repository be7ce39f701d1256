#include "platform/Clock.h"

#include "platform/ServiceSlot.h"
#include "platform/posix/Defaults.h"

namespace platform {
namespace {

constinit ServiceSlot<Clock> slot{"Clock", posix::defaultClock};

} // namespace

Clock::~Clock() = default;

Clock& systemClock() {
    return slot.get();
}

template <>
Clock* exchangeService<Clock>(Clock* service) {
    return slot.exchange(service);
}

} // namespace platform
