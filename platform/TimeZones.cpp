#include "platform/TimeZones.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<TimeZones> slot{"TimeZones", defaults::timeZones};

} // namespace

TimeZones::~TimeZones() = default;

TimeZones& timeZones() {
    return slot.get();
}

template <>
TimeZones* exchangeService<TimeZones>(TimeZones* service) {
    return slot.exchange(service);
}

} // namespace platform
