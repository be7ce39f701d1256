#include "apps/menubar/BarService.h"
#include "apps/menubar/CrashHandler.h"
#include "apps/menubar/CrashJournal.h"
#include "apps/menubar/FailureNotices.h"
#include "apps/menubar/FirstStart.h"
#include "apps/menubar/HangTimer.h"
#include "apps/menubar/ItemRegistry.h"
#include "apps/menubar/MenuBar.h"
#include "apps/menubar/Options.h"
#include "apps/menubar/OwnItemsFolder.h"
#include "apps/menubar/Watcher.h"
#include "apps/shared/StandardDescriptors.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/QuitOnSignals.h"
#include "apps/support/StartUp.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"

#include <QAbstractEventDispatcher>
#include <QApplication>

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <string>
#include <unistd.h>
#include <utility>
#include <vector>

using platform::logLine;

namespace apps {
namespace {

/// The objects that record and repair failures of items. Never destroyed: static destructors of an
/// item run after main.
struct Protection {
    Protection(const Options& options, const Watcher::Inheritance& inheritance,
               std::vector<std::string> command)
        : hangTimer(options.hangLimit, inheritance.hangTimer),
          watcher(inheritance, std::move(command)) {
        journal.inherit(inheritance.journal);
    }

    CrashJournal journal;
    HangTimer hangTimer;
    CrashHandler crashHandler{journal, hangTimer};
    Watcher watcher;
};

/// Calls @p work when the first item has been drawn, or immediately before the main loop first
/// sleeps if there are no items.
void afterFirstPicture(ItemCollection& items, const std::function<void()>& work) {
    const auto isDrawn = [&items] {
        return items.begin() == items.end() ||
               std::any_of(items.begin(), items.end(),
                           [](const Item& item) { return item.wasDrawn; });
    };
    auto* dispatcher = QAbstractEventDispatcher::instance();
    auto* untilDrawn = new QObject(dispatcher);
    QObject::connect(dispatcher, &QAbstractEventDispatcher::aboutToBlock, untilDrawn, [=] {
        if (!isDrawn())
            return;
        work();
        untilDrawn->deleteLater();
    });
}

/// Starts the watcher before the first third-party item is loaded, or else after the first picture,
/// which it must not delay.
void startWatcher(Protection& protection, ItemCollection& items, const std::string& ownItems) {
    const auto start = [&] {
        protection.watcher.start(protection.journal, protection.hangTimer.file());
    };
    QObject::connect(&items, &ItemCollection::aboutToLoad, [=](const ItemRecord& record) {
        if (platform::deletingLastPathComponent(record.path) != ownItems)
            start();
    });
    afterFirstPicture(items, start);
}

void signalReceived(QuitOnSignals::Sender sender, const void* context) {
    CrashJournal* journal = CrashJournal::current();
    if (!journal)
        return;
    const bool isOwn = sender == QuitOnSignals::Sender::ThisProcess;
    if (isOwn && journal->recordFailure(Failure::Exit, interruptedAddress(context)))
        _exit(EXIT_FAILURE);
    journal->recordStop();
}

int runBar(const Options& options, std::vector<std::string> command) {
    const auto inheritance = Watcher::takeInheritance();
    platform::expat::install();
    auto& graphics = platform::qt::install();
    static auto& protection = *new Protection(options, inheritance, std::move(command));
    MenuBar menuBar(graphics, protection.journal);
    ItemRegistry registry(menuBar.items(), protection.journal,
                          Admission(options.admit, ownItemsFolder()));
    BarService service(menuBar, registry);
    const FailureNotices failureNotices(registry);
    FirstStart firstStart;
    QObject::connect(&registry, &ItemRegistry::startedWithoutList, [&] {
        afterFirstPicture(menuBar.items(), [&] { firstStart.turnOnItems(); });
    });
    switch (service.registerOnBus()) {
    case BusName::Claim::Taken:
        return 1;
    case BusName::Claim::NoBus:
        logLine("other programs cannot reach this menu bar: there is no session bus");
        break;
    case BusName::Claim::Acquired:
        break;
    }
    const QuitOnSignals quitOnSignals(signalReceived); // before items load
    const ProgramAppearance appearance(options.appearance);
    protection.hangTimer.start();
    if (options.restart)
        startWatcher(protection, menuBar.items(), ownItemsFolder());
    registry.start(options.bundles);
    menuBar.show();
    const int status = QApplication::exec();
    protection.journal.recordStop();
    return status;
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    apps::openStandardDescriptors();
    int status = 0;
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    const auto options = apps::readOptions(argc, argv, status);
    if (!options)
        return status;
    const auto application = apps::startApplication(argv, "halvex-menubar");
    if (!application)
        return 1;
    std::vector<std::string> command{QApplication::applicationFilePath().toStdString()};
    command.insert(command.end(), arguments.begin(), arguments.end());
    return apps::runBar(*options, std::move(command));
}
