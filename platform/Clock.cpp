#include "platform/Clock.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<Clock> slot{"Clock", defaults::clock};

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
