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

void announceLaunch(const std::string& applicationName) {
    // What hxNSApplicationName holds: services know nothing of the product's identifiers.
    const Notification notification{.name = kDidLaunchApplication,
                                    .object = std::nullopt,
                                    .userInfo = {{"NSApplicationName", applicationName}}};
    distributedNotificationCenter().post(notification);
    sharedWorkspace().notificationCenter().post(notification);
}

} // namespace platform
