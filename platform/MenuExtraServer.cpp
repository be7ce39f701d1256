#include "platform/MenuExtraServer.h"

#include "platform/Operation.h"
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

namespace {

template <class Send>
std::int32_t request(const Send& send) {
    return platform::guardedOperation(
        [&] { return send(platform::menuExtraServer()); },
        static_cast<std::int32_t>(platform::MenuExtraStatus::OutOfMemory));
}

} // namespace

std::int32_t CoreMenuExtraGetMenuExtra(const std::string& identifier,
                                       platform::MenuExtraReference* reference) {
    platform::MenuExtraReference found = 0;
    const std::int32_t status =
        request([&](auto& bar) { return bar.getMenuExtra(identifier, found); });
    if (reference)
        *reference = found;
    return status;
}

std::int32_t CoreMenuExtraAddMenuExtra(const std::string& url, std::int32_t position,
                                       std::int32_t first, std::int32_t second, std::int32_t third,
                                       std::int32_t fourth) {
    return request(
        [&](auto& bar) { return bar.addMenuExtra(url, position, first, second, third, fourth); });
}

std::int32_t CoreMenuExtraRemoveMenuExtra(platform::MenuExtraReference reference,
                                          std::int32_t flags) {
    return request([&](auto& bar) { return bar.removeMenuExtra(reference, flags); });
}
