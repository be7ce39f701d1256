#include "platform/MenuExtraHost.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<MenuExtraHost> slot{"MenuExtraHost"};

} // namespace

MenuExtraHost::~MenuExtraHost() = default;

MenuExtraHost& menuExtraHost() {
    return slot.get();
}

template <>
MenuExtraHost* exchangeService<MenuExtraHost>(MenuExtraHost* service) {
    return slot.exchange(service);
}

} // namespace platform
