#include "platform/ProcessList.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<ProcessList> slot{"ProcessList", defaults::processList};

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
