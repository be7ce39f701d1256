// Usage: hand-over ROUNDS
//
// Requests the calculator from the running background application ROUNDS times, like an item in the
// bar. Prints, for each request, the milliseconds until the notification arrives at another
// connection to the bus. Exits with 1 if the application is not running.

#include "menubar/HalvexMenuExtraBase.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/BusNotifications.h"
#include "platform/qt/QtMainThread.h"
#include "platform/qt/QtWorkspace.h"
#include "prefs/HalvexPrefsTools.h"

#include <QCoreApplication>
#include <QEventLoop>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <memory>

using namespace platform;

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    expat::install();
    const int rounds = argc == 2 ? std::atoi(argv[1]) : 0;
    if (rounds <= 0 || !HalvexPrefsTools::findHalvexBGProcess(nullptr))
        return 1;
    qt::QtMainThread mainLoop;
    qt::QtWorkspace workspace;
    qt::BusNotifications sender, receiver;
    const ScopedService<MainThread> mainThreadService(mainLoop);
    const ScopedService<Workspace> workspaceService(workspace);
    const ScopedService<DistributedNotificationCenter> notificationService(sender);

    QEventLoop waiting;
    const auto observer = std::make_shared<int>();
    receiver.addObserver(observer, "HalvexShowCalculatorNotification",
                         [&](const Notification&) { waiting.quit(); });
    receiver.flush(); // waits until the bus has registered the observer
    const auto item = std::make_shared<HalvexMenuExtraBase>();
    for (int round = 0; round < rounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        item->OpenCalculator(nullptr);
        waiting.exec();
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - begin;
        std::printf("%.3f\n", took.count());
    }
}
