// Hands requests to the background application: finds or starts it on a worker thread, then
// notifies it on the main thread.

#include "identifiers/ExportedIdentifiers.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/Clock.h"
#include "platform/Log.h"
#include "platform/MainThread.h"
#include "platform/Notifications.h"
#include "platform/Operation.h"
#include "platform/Workspace.h"
#include "platform/runtime/DetachedThread.h"
#include "prefs/HalvexPrefsTools.h"

#include <atomic>
#include <functional>
#include <utility>

using namespace platform;

namespace {

constexpr int kMaximumSleeps = 200;
constexpr std::uint64_t kSleepMicroseconds = 250'000;

// gHalvexisrunning is an exported plain integer that several threads read and write.
void setRunning(bool running) {
    std::atomic_ref(gHalvexisrunning).store(running ? 1 : 0);
}

bool isRunning() {
    return std::atomic_ref(gHalvexisrunning).load() != 0;
}

void waitUntilRunning() {
    for (int left = kMaximumSleeps; !isRunning() && left > 0; --left)
        systemClock().sleep(kSleepMicroseconds);
}

/// Searches again, because opening the application does not return its process.
void bringBackgroundApplicationToFront() {
    ProcessSerialNumber process = 0;
    if (HalvexPrefsTools::findHalvexBGProcess(&process))
        sharedWorkspace().bringToFront(process);
}

void openBackgroundApplication(const std::optional<std::string>& path) {
    const bool opened = path && sharedWorkspace().openFile(*path);
    if (opened && !identifiers::isVerbose())
        bringBackgroundApplicationToFront();
    else
        logLine("Halvex Time - launching Halvex.app - %@", path);
}

} // namespace

void HalvexMenuExtraBase::HalvexPrefs(const MenuItem*) {
    HalvexPrefsTools::HalvexOpenPrefs();
}

void HalvexMenuExtraBase::OpenCalculator(const MenuItem*) {
    guardedOperation([&] {
        auto self = sharedSelf();
        // If the thread holds the last reference, the item must be destroyed on the main thread.
        std::function<void()> release = [self] {};
        detachThread([self = std::move(self), release = std::move(release)]() mutable {
            self->HalvexLaunchThread("HalvexShowCalculatorNotification");
            self.reset();
            mainThread().perform(std::move(release), MainThread::Wait::No);
        });
    });
}

void HalvexMenuExtraBase::HalvexLaunchThread(const std::optional<std::string>& name) {
    guardedOperation([&] {
        setRunning(false);
        const auto notify = [self = sharedSelf(), name] { self->notifyHalvex2(name); };
        ProcessSerialNumber process = 0;
        if (HalvexPrefsTools::findHalvexBGProcess(&process)) {
            setRunning(true);
            sharedWorkspace().bringToFront(process);
            mainThread().perform(notify, MainThread::Wait::No);
            return;
        }
        const auto path = HalvexPrefsTools::getHalvexBGApplicationPath();
        observeLaunches();
        openBackgroundApplication(path);
        waitUntilRunning();
        if (name)
            mainThread().perform(notify, MainThread::Wait::UntilDone);
    });
}

void HalvexMenuExtraBase::notifyHalvex2(const std::optional<std::string>& name) {
    guardedOperation([&] {
        if (name)
            distributedNotificationCenter().post({.name = *name, .object = {}, .userInfo = {}});
    });
}

void HalvexMenuExtraBase::HalvexLaunched(const Notification& notification) {
    guardedOperation([&] {
        const PropertyList* name = notification.userInfo.find(hxNSApplicationName);
        const bool isHalvex = name && name->string() == "Halvex";
        if (!isHalvex && !HalvexPrefsTools::findHalvexBGProcess(nullptr))
            return;
        setRunning(true);
        distributedNotificationCenter().removeObserver(weak_from_this(), kDidLaunchApplication);
        sharedWorkspace().notificationCenter().removeObserver(weak_from_this(),
                                                              kDidLaunchApplication);
    });
}

void HalvexMenuExtraBase::observeLaunches() {
    // The notification centers keep the observer alive during the call, so capturing this is safe.
    const auto launched = [this](const Notification& notification) {
        HalvexLaunched(notification);
    };
    distributedNotificationCenter().addObserver(weak_from_this(), kDidLaunchApplication, launched);
    sharedWorkspace().notificationCenter().addObserver(weak_from_this(), kDidLaunchApplication,
                                                       launched);
}

std::shared_ptr<HalvexMenuExtraBase> HalvexMenuExtraBase::sharedSelf() {
    return std::static_pointer_cast<HalvexMenuExtraBase>(shared_from_this());
}
