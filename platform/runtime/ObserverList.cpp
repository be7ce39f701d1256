#include "platform/runtime/ObserverList.h"

#include "platform/Operation.h"
#include "platform/runtime/Guard.h"

#include <algorithm>
#include <utility>

namespace platform {
namespace {

/// Whether both refer to the same object, which may have been destroyed.
bool isSame(const std::weak_ptr<const void>& left, const std::weak_ptr<const void>& right) {
    return !left.owner_before(right) && !right.owner_before(left);
}

} // namespace

struct ObserverList::Registration {
    std::weak_ptr<const void> observer;
    std::string name;
    NotificationCenter::Handler handler;
    std::string owner;
};

ObserverList::~ObserverList() = default;

void ObserverList::add(const std::weak_ptr<const void>& observer, const std::string& name,
                       NotificationCenter::Handler handler) {
    guardedOperation([&] {
        auto registration = std::make_shared<const Registration>(
            Registration{observer, name, std::move(handler), currentOwner()});
        const std::lock_guard lock(mutex_);
        removeExpiredLocked();
        const auto existing = std::ranges::find_if(registrations_, [&](const auto& candidate) {
            return candidate->name == name && isSame(candidate->observer, observer);
        });
        if (existing == registrations_.end())
            registrations_.push_back(std::move(registration));
        else
            *existing = std::move(registration);
    });
}

void ObserverList::remove(const std::weak_ptr<const void>& observer, const std::string& name) {
    const std::lock_guard lock(mutex_);
    std::erase_if(registrations_, [&](const auto& candidate) {
        return candidate->name == name && isSame(candidate->observer, observer);
    });
}

void ObserverList::removeExpired() {
    const std::lock_guard lock(mutex_);
    removeExpiredLocked();
}

void ObserverList::deliver(const Notification& notification) {
    guardedOperation([&] {
        std::unique_lock lock(mutex_);
        removeExpiredLocked();
        const auto registrations = registrations_;
        lock.unlock();
        for (const auto& registration : registrations) {
            if (registration->name != notification.name)
                continue;
            const auto observer = registration->observer.lock();
            // An earlier handler may have removed this one.
            if (observer && contains(registration))
                runGuarded(registration->owner, [&] { registration->handler(notification); });
        }
    });
}

bool ObserverList::observes(const std::string& name) {
    return std::ranges::count(names(), name) > 0;
}

std::vector<std::string> ObserverList::names() {
    const std::lock_guard lock(mutex_);
    removeExpiredLocked();
    std::vector<std::string> names;
    for (const auto& registration : registrations_)
        if (std::ranges::count(names, registration->name) == 0)
            names.push_back(registration->name);
    return names;
}

void ObserverList::removeExpiredLocked() {
    std::erase_if(registrations_,
                  [](const auto& candidate) { return candidate->observer.expired(); });
}

bool ObserverList::contains(const std::shared_ptr<const Registration>& registration) {
    const std::lock_guard lock(mutex_);
    return std::ranges::count(registrations_, registration) > 0;
}

} // namespace platform
