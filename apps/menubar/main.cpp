#include "apps/menubar/BarService.h"
#include "apps/menubar/DesktopAppearance.h"
#include "apps/menubar/ItemKeeper.h"
#include "apps/menubar/MenuBar.h"
#include "apps/menubar/Options.h"
#include "apps/menubar/Signals.h"
#include "apps/menubar/StartUp.h"
#include "apps/menubar/StepJournal.h"
#include "platform/Log.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"

#include <QApplication>

#include <fontconfig/fontconfig.h>
#include <malloc.h>
#include <optional>
#include <string>
#include <thread>

using platform::logLine;

namespace {

int runBar(const Options& options) {
    platform::expat::install();
    StepJournal journal;
    MenuBar menuBar(platform::qt::install(), journal);
    ItemKeeper items(menuBar, journal, Admission(options.admit, ownItemsFolder()));
    BarService service(menuBar, items);
    switch (service.registerOnBus()) {
    case BarService::Registration::TakenByAnother:
        logLine("another menu bar is running on this session bus");
        return 1;
    case BarService::Registration::NoBus:
        logLine("no session bus: nobody can talk to this menu bar");
        break;
    case BarService::Registration::Done:
        break;
    }
    std::optional<DesktopAppearance> desktopAppearance;
    if (options.appearance == Appearance::Desktop)
        desktopAppearance.emplace();
    else
        applyAppearance(options.appearance);
    items.start(options.bundles);
    menuBar.show();
    const QuitOnSignals quitOnSignals;
    return QApplication::exec();
}

} // namespace

int main(int argc, char** argv) {
    int status = 0;
    const auto options = readOptions(argc, argv, status);
    if (!options)
        return status;
    mallopt(M_ARENA_MAX, 1); // the few threads here would only scatter what little there is
    logQtMessages();
    // The list of fonts is read from many small files: beside the way to the X server, not after
    // it.
    const std::jthread fonts([] { FcInit(); });
    int qtArguments = 1;
    std::optional<QApplication> application;
    {
        const DisplayChoice choice;
        application.emplace(qtArguments, argv);
    }
    application->setApplicationName("halvex-menubar");
    return runBar(*options);
}
