#include "apps/menubar/BarService.h"
#include "apps/menubar/ItemKeeper.h"
#include "apps/menubar/MenuBar.h"
#include "apps/menubar/Options.h"
#include "apps/menubar/Places.h"
#include "apps/menubar/StepJournal.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/Signals.h"
#include "apps/support/StartUp.h"
#include "platform/Log.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"

#include <QApplication>

using platform::logLine;

namespace apps {
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
    const QuitOnSignals quitOnSignals; // before an item could be blamed for what they end
    const ProgramAppearance appearance(options.appearance);
    items.start(options.bundles);
    menuBar.show();
    return QApplication::exec();
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    int status = 0;
    const auto options = apps::readOptions(argc, argv, status);
    if (!options)
        return status;
    const auto application = apps::startApplication(argv, "halvex-menubar");
    return apps::runBar(*options);
}
