#include "platform/Workspace.h"

#include "platform/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<Workspace> slot{"Workspace"};

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
