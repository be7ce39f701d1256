#include "apps/halvex/CalculatorWindow.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/SessionApplication.h"
#include "apps/support/Signals.h"
#include "apps/support/WindowProgram.h"
#include "apps/support/WindowService.h"
#include "platform/Log.h"
#include "platform/Notifications.h"
#include "platform/Workspace.h"

#include <QApplication>

#include <memory>

using platform::logLine;

namespace apps {
namespace {

constexpr CommandLine kCommandLine{
    R"(Usage: Halvex [--appearance desktop|light|dark]
Waits in the background for what menu extras ask of it, such as the calculator. Each session has one:
a second start brings its window to the front.

  --appearance    the desktop's colours (as it is without the option), light or dark ones
  --help, --version
)"};
constexpr const char* kBusName = "com.quorvanesoftware.Halvex";
constexpr const char* kName = "Halvex";
constexpr const char* kShowCalculator = "HalvexShowCalculatorNotification";

SessionApplication::Handlers handlersOf(CalculatorWindow& calculator) {
    return {.activate =
                [&calculator] {
                    if (calculator.isVisible())
                        calculator.present();
                },
            .open = [](const QStringList&) { return QString("Halvex opens no files"); },
            .act =
                [&calculator](const QString& action, const QVariantList&) {
                    if (action != "calculator")
                        return QString("Halvex has no action \"%1\"").arg(action);
                    calculator.present();
                    return QString();
                }};
}

int runInBackground(const WindowOptions& options) {
    QApplication::setQuitOnLastWindowClosed(false);
    CalculatorWindow calculator;
    SessionApplication application(kBusName, handlersOf(calculator));
    new WindowService(application, calculator);
    switch (application.claim()) {
    case SessionApplication::Claim::Second:
        return application.askFirst("Activate") ? 0 : 1;
    case SessionApplication::Claim::NoBus:
        logLine("no session bus: nobody can ask anything of Halvex");
        return 1;
    case SessionApplication::Claim::First:
        break;
    }
    const QuitOnSignals quitOnSignals;
    const ProgramAppearance appearance(options.appearance);
    const auto observer = std::make_shared<int>(); // hears as long as this function runs
    platform::distributedNotificationCenter().addObserver(
        observer, kShowCalculator,
        [&calculator](const platform::Notification&) { calculator.present(); });
    platform::announceLaunch(kName); // from now on it can be asked for something
    return QApplication::exec();
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    return apps::runWindowProgram(argc, argv, apps::kName, apps::kCommandLine,
                                  apps::runInBackground);
}
