// hand-over ROUNDS
// Asks the running background application for the calculator, as an item in the bar does, and
// prints for each time how many milliseconds later the notification is heard, on a connection to
// the bus of its own, like the application's.

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
    qt::BusNotifications posting, hearing;
    const ScopedService<MainThread> mainLoopInPlace(mainLoop);
    const ScopedService<Workspace> workspaceInPlace(workspace);
    const ScopedService<DistributedNotificationCenter> postingInPlace(posting);

    QEventLoop untilHeard;
    const auto listener = std::make_shared<int>();
    hearing.addObserver(listener, "HalvexShowCalculatorNotification",
                        [&](const Notification&) { untilHeard.quit(); });
    hearing.flush(); // the bus knows of it
    const auto item = std::make_shared<HalvexMenuExtraBase>();
    for (int round = 0; round < rounds; ++round) {
        const auto begin = std::chrono::steady_clock::now();
        item->OpenCalculator(nullptr);
        untilHeard.exec();
        const std::chrono::duration<double, std::milli> took =
            std::chrono::steady_clock::now() - begin;
        std::printf("%.3f\n", took.count());
    }
}
