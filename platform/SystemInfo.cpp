#include "platform/SystemInfo.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<SystemInfo> slot{"SystemInfo", defaults::systemInfo};

} // namespace

SystemInfo::~SystemInfo() = default;

SystemInfo& systemInfo() {
    return slot.get();
}

template <>
SystemInfo* exchangeService<SystemInfo>(SystemInfo* service) {
    return slot.exchange(service);
}

} // namespace platform
