#include "apps/preferences/BarWatch.h"
#include "apps/preferences/PreferencesWindow.h"
#include "apps/shared/AbsolutePath.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/SessionApplication.h"
#include "apps/support/Signals.h"
#include "apps/support/WindowProgram.h"
#include "apps/support/WindowService.h"
#include "menuextras/ExportedIdentifiers.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"

#include <QApplication>
#include <QDir>
#include <QUrl>

namespace apps {
namespace {

constexpr CommandLine kCommandLine{
    .help = R"(Usage: halvex-preferences [--appearance desktop|light|dark] [PANE.prefPane]
       halvex-preferences [--appearance desktop|light|dark] --select IDENTIFIER
Shows a preference pane, the product's own when none is named. Each session has one window: a second
start shows its pane there.

  PANE.prefPane   the pane in a folder
  --select        the pane with an identifier, among those that are installed
  --appearance    the desktop's colours (as it is without the option), light or dark ones
  --help, --version
)",
    .mostArguments = 1,
    .hasSelect = true};
constexpr const char* kBusName = "com.quorvanesoftware.Preferences";
constexpr const char* kSelect = "select";

using apps::absolutePath;

void showPane(PreferencesWindow& window, const PaneChoice& choice) {
    window.show(choice);
    window.present();
}

void select(PreferencesWindow& window, const std::string& identifier) {
    showPane(window, paneWithIdentifier(identifier, window.pane()));
}

QString open(PreferencesWindow& window, const QStringList& uris) {
    for (const QString& uri : uris) {
        const auto path = platform::pathOfFileURL(uri.toStdString());
        if (!path)
            return QString("\"%1\" is not a file URL").arg(uri);
        showPane(window, paneAtPath(absolutePath(*path)));
    }
    return {};
}

QString act(PreferencesWindow& window, const QString& action, const QVariantList& parameters) {
    if (action != kSelect)
        return QString("there is no action \"%1\"").arg(action);
    if (parameters.size() != 1 || parameters[0].toString().isEmpty())
        return "the action \"select\" takes an identifier";
    select(window, parameters[0].toString().toStdString());
    return {};
}

/// What the command line asks for, asked of the process that has the window.
bool handOver(const SessionApplication& application, const WindowOptions& options) {
    if (options.select)
        return application.askFirst(
            "ActivateAction", {kSelect, QVariantList{QString::fromStdString(*options.select)}});
    if (options.arguments.empty())
        return application.askFirst("Activate");
    const QString path = QString::fromStdString(absolutePath(options.arguments[0]));
    return application.askFirst("Open", {QStringList(QUrl::fromLocalFile(path).toString())});
}

int runWindow(const WindowOptions& options) {
    platform::qt::BarClient bar;
    const platform::ScopedService<platform::MenuExtraServer> server(bar);
    PreferencesWindow window([&bar] { return bool(bar.processIdentifier()); });
    SessionApplication application(
        kBusName, {.activate = [&window] { window.present(); },
                   .open = [&window](const QStringList& uris) { return open(window, uris); },
                   .act =
                       [&window](const QString& action, const QVariantList& parameters) {
                           return act(window, action, parameters);
                       }});
    new WindowService(application, window);
    switch (application.claim()) {
    case SessionApplication::Claim::Second:
        return handOver(application, options) ? 0 : 1;
    case SessionApplication::Claim::NoBus:
        platform::logLine("no session bus: the menu bar cannot be reached");
        break;
    case SessionApplication::Claim::First:
        break;
    }
    const QuitOnSignals quitOnSignals;
    const ProgramAppearance appearance(options.appearance);
    const BarWatch barWatch;
    QObject::connect(&barWatch, &BarWatch::changed, &window, &PreferencesWindow::refresh);
    if (options.arguments.empty())
        select(window, options.select.value_or(HalvexPrefsBundleID));
    else
        showPane(window, paneAtPath(absolutePath(options.arguments[0])));
    return QApplication::exec();
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    return apps::runWindowProgram(argc, argv, "halvex-preferences", apps::kCommandLine,
                                  apps::runWindow);
}
