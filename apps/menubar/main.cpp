#include "apps/menubar/BarService.h"
#include "apps/menubar/CrashJournal.h"
#include "apps/menubar/ItemRegistry.h"
#include "apps/menubar/MenuBar.h"
#include "apps/menubar/Options.h"
#include "apps/menubar/OwnItemsFolder.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/QuitOnSignals.h"
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
    CrashJournal journal;
    MenuBar menuBar(platform::qt::install(), journal);
    ItemRegistry registry(menuBar.items(), journal, Admission(options.admit, ownItemsFolder()));
    BarService service(menuBar, registry);
    switch (service.registerOnBus()) {
    case BusName::Claim::Taken:
        logLine("cannot start: another menu bar is running on this session bus");
        return 1;
    case BusName::Claim::NoBus:
        logLine("other programs cannot reach this menu bar: there is no session bus");
        break;
    case BusName::Claim::Acquired:
        break;
    }
    const QuitOnSignals quitOnSignals; // before items load, or a signal would look like a crash
    const ProgramAppearance appearance(options.appearance);
    registry.start(options.bundles);
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
