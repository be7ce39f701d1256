#include "platform/SystemInfo.h"

#include "platform/ServiceSlot.h"
#include "platform/posix/Defaults.h"

namespace platform {
namespace {

constinit ServiceSlot<SystemInfo> slot{"SystemInfo", posix::defaultSystemInfo};

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
