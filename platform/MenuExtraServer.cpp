#include "platform/MenuExtraServer.h"

#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<MenuExtraServer> slot{"MenuExtraServer"};

} // namespace

MenuExtraServer::~MenuExtraServer() = default;

MenuExtraServer& menuExtraServer() {
    return slot.get();
}

template <>
MenuExtraServer* exchangeService<MenuExtraServer>(MenuExtraServer* service) {
    return slot.exchange(service);
}

} // namespace platform

std::int32_t CoreMenuExtraGetMenuExtra(const std::string& identifier,
                                       platform::MenuExtraReference* reference) {
    platform::MenuExtraReference found = 0;
    const std::int32_t status = platform::menuExtraServer().getMenuExtra(identifier, found);
    if (reference)
        *reference = found;
    return status;
}

std::int32_t CoreMenuExtraAddMenuExtra(const std::string& url, std::int32_t position,
                                       std::int32_t first, std::int32_t second, std::int32_t third,
                                       std::int32_t fourth) {
    return platform::menuExtraServer().addMenuExtra(url, position, first, second, third, fourth);
}

std::int32_t CoreMenuExtraRemoveMenuExtra(platform::MenuExtraReference reference,
                                          std::int32_t flags) {
    return platform::menuExtraServer().removeMenuExtra(reference, flags);
}
