#include "apps/menubar/BarService.h"
#include "apps/menubar/MenuBar.h"
#include "apps/menubar/Signals.h"
#include "apps/menubar/StartUp.h"
#include "platform/Log.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/Desktop.h"

#include <CLI/CLI.hpp>
#include <QApplication>

#include <fontconfig/fontconfig.h>
#include <map>
#include <string>
#include <thread>
#include <vector>

using platform::logLine;

namespace {

constexpr int kWrongUsage = 2;
constexpr std::int32_t kLastPosition = 999; // left of everything else

struct Options {
    std::vector<std::string> bundles;
    Appearance appearance = Appearance::Desktop;
};

void addOptions(CLI::App& commandLine, Options& options) {
    const std::map<std::string, Appearance> appearances{
        {"desktop", Appearance::Desktop}, {"light", Appearance::Light}, {"dark", Appearance::Dark}};
    commandLine.add_option("BUNDLE", options.bundles, "Menu extras to load, as paths of bundles")
        ->check(CLI::ExistingDirectory);
    commandLine.add_option("--appearance", options.appearance, "The desktop's, light or dark")
        ->transform(CLI::CheckedTransformer(appearances).description("desktop|light|dark"));
    commandLine.set_version_flag("--version", HALVEX_VERSION);
}

int runBar(QApplication& application, const Options& options) {
    platform::expat::install();
    MenuBar menuBar(platform::qt::install());
    BarService service(menuBar);
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
    applyAppearance(options.appearance);
    menuBar.add(ownClockPath(), 0);
    for (const std::string& bundle : options.bundles)
        menuBar.add(absolutePath(bundle), kLastPosition);
    menuBar.show();
    const QuitOnSignals quitOnSignals;
    return application.exec();
}

} // namespace

int main(int argc, char** argv) {
    Options options;
    CLI::App commandLine("The menu bar: shows menu extras along the top of the screen.");
    addOptions(commandLine, options);
    try {
        commandLine.parse(argc, argv);
    } catch (const CLI::ParseError& error) {
        return commandLine.exit(error) == 0 ? 0 : kWrongUsage;
    }
    chooseDisplay();
    logQtMessages();
    // The list of fonts is read from many small files: beside the way to the X server, not after it.
    const std::jthread fonts([] { FcInit(); });
    int qtArguments = 1;
    QApplication application(qtArguments, argv);
    application.setApplicationName("halvex-menubar");
    return runBar(application, options);
}
