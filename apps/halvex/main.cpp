#include "apps/halvex/CalculatorWindow.h"
#include "apps/halvex/KeptWarnings.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/QuitOnSignals.h"
#include "apps/support/SessionApplication.h"
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
Run in the background, show the calculator when a menu extra requests it, and ring the warnings that
are set in the clock. If Halvex is already running in this session, bring its window to the front
instead. Halvex quits after the last warning unless its window is visible.

  --appearance    Use the desktop's colours (the default), or light or dark ones.
  --help          Print this help.
  --version       Print the version.
)"};
constexpr const char* kBusName = "com.quorvanesoftware.Halvex";
constexpr const char* kName = "Halvex";
constexpr const char* kShowCalculator = "HalvexShowCalculatorNotification";

SessionApplication::Handlers makeHandlers(CalculatorWindow& calculator) {
    return {.activate =
                [&calculator] {
                    if (calculator.isVisible())
                        bringToFront(calculator);
                },
            .open = [](const QStringList&) { return QString("Halvex cannot open files"); },
            .runAction =
                [&calculator](const QString& action, const QVariantList&) {
                    if (action != "calculator")
                        return QString("unknown action \"%1\": use \"calculator\"").arg(action);
                    bringToFront(calculator);
                    return QString();
                }};
}

int runInBackground(const WindowOptions& options) {
    QApplication::setQuitOnLastWindowClosed(false);
    CalculatorWindow calculator;
    SessionApplication application(kBusName, makeHandlers(calculator));
    new WindowService(application, calculator);
    // Observe before claiming the name, because other programs post requests from then on. The main
    // loop handles them once it runs.
    const auto observer = std::make_shared<int>(); // removes the handler when this function returns
    platform::distributedNotificationCenter().addObserver(
        observer, kShowCalculator,
        [&calculator](const platform::Notification&) { bringToFront(calculator); });
    switch (application.claim()) {
    case BusName::Claim::Taken:
        return application.callRunningInstance("Activate") ? 0 : 1;
    case BusName::Claim::NoBus:
        logLine("Halvex cannot start: there is no session bus");
        return 1;
    case BusName::Claim::Acquired:
        break;
    }
    const QuitOnSignals quitOnSignals;
    const ProgramAppearance appearance(options.appearance);
    platform::announceLaunch(kName);
    const KeptWarnings warnings(calculator);
    return QApplication::exec();
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    return apps::runWindowProgram(argc, argv, apps::kName, apps::kCommandLine,
                                  apps::runInBackground);
}
