#include "platform/Workspace.h"

#include "platform/Defaults.h"
#include "platform/Operation.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<Workspace> slot{"Workspace", defaults::workspace};

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
    guardedStep([&] {
        // The value of hxNSApplicationName, which this layer must not depend on.
        const Notification notification{.name = kDidLaunchApplication,
                                        .object = std::nullopt,
                                        .userInfo = {{"NSApplicationName", applicationName}}};
        distributedNotificationCenter().post(notification);
        sharedWorkspace().notificationCenter().post(notification);
    });
}

} // namespace platform
