#include "platform/Timers.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<Timers> slot{"Timers", defaults::timers};

} // namespace

Timers::~Timers() = default;

Timers& timers() {
    return slot.get();
}

template <>
Timers* exchangeService<Timers>(Timers* service) {
    return slot.exchange(service);
}

} // namespace platform
