#include "platform/runtime/LocalNotificationCenter.h"

#include "platform/Defaults.h"
#include "platform/base/NeverDestroyed.h"

// Both centers are never destroyed: threads that outlive main may still post.

platform::NotificationCenter& platform::defaults::notificationCenter() {
    static NeverDestroyed<LocalNotificationCenter> center;
    return center.get();
}

platform::DistributedNotificationCenter& platform::defaults::distributedNotificationCenter() {
    static NeverDestroyed<LocalDistributedNotificationCenter> center;
    return center.get();
}
