#include "platform/Notifications.h"

#include "platform/Guard.h"
#include "platform/ServiceSlot.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

// Never destroyed: a thread that outlives main may still post.
NotificationCenter& ownCenter() {
    static auto* const center = new NotificationCenter;
    return *center;
}

DistributedNotificationCenter& lonelyCenter() {
    static auto* const center = new DistributedNotificationCenter;
    return *center;
}

constinit ServiceSlot<NotificationCenter> ownSlot{"NotificationCenter", ownCenter};
constinit ServiceSlot<DistributedNotificationCenter> distributedSlot{
    "DistributedNotificationCenter", lonelyCenter};

/// Whether both refer to one object, which may be gone.
bool same(const std::weak_ptr<const void>& left, const std::weak_ptr<const void>& right) {
    return !left.owner_before(right) && !right.owner_before(left);
}

} // namespace

struct NotificationCenter::Registration {
    std::weak_ptr<const void> observer;
    std::string name;
    Handler handler;
    std::string owner;
};

NotificationCenter::~NotificationCenter() = default;

void NotificationCenter::addObserver(const std::weak_ptr<const void>& observer,
                                     const std::string& name, Handler handler) {
    auto fresh = std::make_shared<const Registration>(
        Registration{observer, name, std::move(handler), currentOwner()});
    const std::lock_guard lock(mutex_);
    forgetTheGone();
    const auto old = std::ranges::find_if(registrations_, [&](const auto& candidate) {
        return candidate->name == name && same(candidate->observer, observer);
    });
    if (old == registrations_.end())
        registrations_.push_back(std::move(fresh));
    else
        *old = std::move(fresh);
}

void NotificationCenter::removeObserver(const std::weak_ptr<const void>& observer,
                                        const std::string& name) {
    const std::lock_guard lock(mutex_);
    std::erase_if(registrations_, [&](const auto& candidate) {
        return candidate->name == name && same(candidate->observer, observer);
    });
}

void NotificationCenter::forgetGoneObservers() {
    const std::lock_guard lock(mutex_);
    forgetTheGone();
}

void NotificationCenter::post(const Notification& notification) {
    deliver(notification);
}

void NotificationCenter::deliver(const Notification& notification) {
    std::unique_lock lock(mutex_);
    forgetTheGone();
    const auto registrations = registrations_;
    lock.unlock();
    for (const auto& registration : registrations) {
        if (registration->name != notification.name)
            continue;
        const auto observer = registration->observer.lock();
        // An earlier handler may have taken this one out.
        if (observer && isRegistered(registration))
            runGuarded(registration->owner, [&] { registration->handler(notification); });
    }
}

bool NotificationCenter::hasObservers(const std::string& name) {
    return std::ranges::count(observedNames(), name) > 0;
}

std::vector<std::string> NotificationCenter::observedNames() {
    const std::lock_guard lock(mutex_);
    forgetTheGone();
    std::vector<std::string> names;
    for (const auto& registration : registrations_)
        if (std::ranges::count(names, registration->name) == 0)
            names.push_back(registration->name);
    return names;
}

void NotificationCenter::forgetTheGone() {
    std::erase_if(registrations_,
                  [](const auto& candidate) { return candidate->observer.expired(); });
}

bool NotificationCenter::isRegistered(const std::shared_ptr<const Registration>& registration) {
    const std::lock_guard lock(mutex_);
    return std::ranges::count(registrations_, registration) > 0;
}

NotificationCenter& defaultNotificationCenter() {
    return ownSlot.get();
}

template <>
NotificationCenter* exchangeService<NotificationCenter>(NotificationCenter* service) {
    return ownSlot.exchange(service);
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
