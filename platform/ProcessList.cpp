#include "platform/ProcessList.h"

#include "platform/ServiceSlot.h"
#include "platform/posix/Defaults.h"

namespace platform {
namespace {

constinit ServiceSlot<ProcessList> slot{"ProcessList", posix::defaultProcessList};

} // namespace

ProcessList::~ProcessList() = default;

ProcessList& processList() {
    return slot.get();
}

template <>
ProcessList* exchangeService<ProcessList>(ProcessList* service) {
    return slot.exchange(service);
}

} // namespace platform
