#include "platform/runtime/LocalNotificationCenter.h"

#include "platform/Defaults.h"

// Both centers are never destroyed: threads that outlive main may still post.

platform::NotificationCenter& platform::defaults::notificationCenter() {
    static auto* const center = new LocalNotificationCenter;
    return *center;
}

platform::DistributedNotificationCenter& platform::defaults::distributedNotificationCenter() {
    static auto* const center = new LocalDistributedNotificationCenter;
    return *center;
}
