#include "apps/menubar/FailureNotices.h"

#include "apps/menubar/ItemRegistry.h"
#include "apps/support/Texts.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/UserNotifications.h"

#include <QTimer>

#include <chrono>
#include <string>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr const char* kIcon = "dialog-warning";
constexpr const char* kTurnOn = "turn-on";
// Connecting to the desktop's notifications must not delay the first picture.
constexpr std::chrono::milliseconds kDelay{300};

std::string nameOf(const ItemRecord& item) {
    const auto bundle = Bundle::bundleWithPath(item.path);
    const auto name = bundle ? bundle->stringForInfoDictionaryKey("CFBundleName") : std::nullopt;
    return name.value_or(item.identifier);
}

const char* reason(Failure failure) {
    switch (failure) {
    case Failure::Hang:
        return localized("It stopped responding.");
    case Failure::Exit:
        return localized("It ended the menu bar.");
    case Failure::Crash:
    case Failure::None:
        break;
    }
    return localized("It crashed the menu bar.");
}

} // namespace

FailureNotices::FailureNotices(ItemRegistry& registry) : registry_(registry) {
    connect(&registry, &ItemRegistry::disabledAfterFailure, this,
            [this](const CrashJournal::Note& note) {
                const std::string identifier = note.item.identifier;
                postLater({.key = identifier,
                           .title = fill(localized("%1 was turned off"), {nameOf(note.item)}),
                           .body = reason(note.failure),
                           .icon = kIcon,
                           .actions = {{kTurnOn, localized("Turn on again")}},
                           .observer = self_,
                           .handler = [this, identifier](const std::string& action) {
                               if (action == kTurnOn)
                                   turnOn(identifier);
                           }});
            });
    connect(&registry, &ItemRegistry::startedWithOwnItemsOnly, this, [this] {
        postLater(
            {.key = "own items only",
             .title = localized("Added menu extras are turned off for now"),
             .body = localized("The menu bar exited three times within ten seconds for an unknown "
                               "reason. They are turned on again when it is next started."),
             .icon = kIcon,
             .actions = {},
             .observer = {},
             .handler = {}});
    });
}

void FailureNotices::turnOn(const std::string& identifier) {
    const std::string error = registry_.enable(identifier);
    if (!error.empty())
        logLine("cannot turn on menu extra: %@", error);
}

void FailureNotices::postLater(UserNotification notification) {
    QTimer::singleShot(kDelay, this, [notification = std::move(notification)] {
        userNotifications().post(notification);
    });
}

} // namespace apps
