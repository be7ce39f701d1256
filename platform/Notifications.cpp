#include "platform/Notifications.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

namespace platform {
namespace {

constinit ServiceSlot<NotificationCenter> defaultSlot{"NotificationCenter",
                                                      defaults::notificationCenter};
constinit ServiceSlot<DistributedNotificationCenter> distributedSlot{
    "DistributedNotificationCenter", defaults::distributedNotificationCenter};

} // namespace

NotificationCenter::~NotificationCenter() = default;

NotificationCenter& defaultNotificationCenter() {
    return defaultSlot.get();
}

template <>
NotificationCenter* exchangeService<NotificationCenter>(NotificationCenter* service) {
    return defaultSlot.exchange(service);
}

DistributedNotificationCenter& distributedNotificationCenter() {
    return distributedSlot.get();
}

template <>
DistributedNotificationCenter*
exchangeService<DistributedNotificationCenter>(DistributedNotificationCenter* service) {
    return distributedSlot.exchange(service);
}

} // namespace platform
