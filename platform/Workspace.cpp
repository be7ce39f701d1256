#include "platform/Workspace.h"

#include "platform/ServiceSlot.h"
#include "platform/posix/Defaults.h"

namespace platform {
namespace {

constinit ServiceSlot<Workspace> slot{"Workspace", posix::defaultWorkspace};

} // namespace

Workspace::~Workspace() = default;

Workspace& sharedWorkspace() {
    return slot.get();
}

template <>
Workspace* exchangeService<Workspace>(Workspace* service) {
    return slot.exchange(service);
}

} // namespace platform
