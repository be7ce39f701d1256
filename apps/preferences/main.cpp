#include "apps/preferences/BarWatch.h"
#include "apps/preferences/PreferencesWindow.h"
#include "apps/shared/AbsolutePath.h"
#include "apps/support/ProgramAppearance.h"
#include "apps/support/QuitOnSignals.h"
#include "apps/support/SessionApplication.h"
#include "apps/support/WindowProgram.h"
#include "apps/support/WindowService.h"
#include "identifiers/ExportedIdentifiers.h"
#include "platform/Log.h"
#include "platform/base/PathStrings.h"
#include "platform/qt/BarClient.h"

#include <QApplication>
#include <QDir>
#include <QUrl>

#include <algorithm>

namespace apps {
namespace {

constexpr CommandLine kCommandLine{
    .help = R"(Usage: halvex-preferences [--appearance desktop|light|dark] [PANE.prefPane]
       halvex-preferences [--appearance desktop|light|dark] --select IDENTIFIER
Show a preference pane, by default that of Halvex Pro. If a window is already open in this session,
show the pane there.

  PANE.prefPane   Show the pane in this folder.
  --select        Show the installed pane with this bundle identifier.
  --appearance    Use the desktop's colours (the default), or light or dark ones.
  --help          Print this help.
  --version       Print the version.
)",
    .maxArguments = 1,
    .hasSelect = true};
constexpr const char* kBusName = "com.quorvanesoftware.Preferences";
constexpr const char* kSelect = "select";

void showPane(PreferencesWindow& window, const PaneLookup& lookup) {
    window.showPane(lookup);
    bringToFront(window);
}

void select(PreferencesWindow& window, const std::string& identifier) {
    showPane(window, findPaneWithIdentifier(identifier, window.pane()));
}

QString open(PreferencesWindow& window, const QStringList& uris) {
    for (const QString& uri : uris) {
        const auto path = platform::pathOfFileURL(uri.toStdString());
        if (!path)
            return QString("cannot open \"%1\": not a file URL").arg(uri);
        showPane(window, findPaneAtPath(absolutePath(*path)));
    }
    return {};
}

QString runAction(PreferencesWindow& window, const QString& action,
                  const QVariantList& parameters) {
    if (action != kSelect)
        return QString("unknown action \"%1\": use \"select\"").arg(action);
    if (parameters.size() != 1 || parameters[0].toString().isEmpty())
        return "the action \"select\" needs one parameter, the identifier of a pane";
    select(window, parameters[0].toString().toStdString());
    return {};
}

/// Sends the command line to the process that owns the window.
bool forwardOptions(const SessionApplication& application, const WindowOptions& options) {
    if (options.select)
        return application.callRunningInstance(
            "ActivateAction", {kSelect, QVariantList{QString::fromStdString(*options.select)}});
    if (options.arguments.empty())
        return application.callRunningInstance("Activate");
    const QString path = QString::fromStdString(absolutePath(options.arguments[0]));
    return application.callRunningInstance("Open",
                                           {QStringList(QUrl::fromLocalFile(path).toString())});
}

std::string problem(platform::qt::BarClient& bar, const std::string& identifier) {
    const auto items = bar.items();
    if (!items)
        return items.reason;
    const auto found =
        std::ranges::find(*items.value, identifier, &platform::qt::KnownItem::identifier);
    return found == items.value->end() ? "" : problemOf(*found);
}

std::string thirdPartyProblems(platform::qt::BarClient& bar) {
    std::string lines;
    for (const auto& item : bar.items().value.value_or(std::vector<platform::qt::KnownItem>())) {
        const std::string problem = item.isOwn ? "" : problemOf(item);
        if (!problem.empty())
            lines += (item.name.empty() ? item.path : item.name) + ": " + problem + '\n';
    }
    return lines;
}

int runWindow(const WindowOptions& options) {
    platform::qt::BarClient bar;
    const platform::ScopedService<platform::MenuExtraServer> server(bar);
    PreferencesWindow window({.isRunning = [&bar] { return bool(bar.processIdentifier()); },
                              .problem = [&bar](const auto& item) { return problem(bar, item); },
                              .thirdPartyProblems = [&bar] { return thirdPartyProblems(bar); }});
    SessionApplication application(
        kBusName, {.activate = [&window] { bringToFront(window); },
                   .open = [&window](const QStringList& uris) { return open(window, uris); },
                   .runAction =
                       [&window](const QString& action, const QVariantList& parameters) {
                           return runAction(window, action, parameters);
                       }});
    new WindowService(application, window);
    switch (application.claim()) {
    case BusName::Claim::Taken:
        return forwardOptions(application, options) ? 0 : 1;
    case BusName::Claim::NoBus:
        platform::logLine("cannot reach the menu bar: there is no session bus");
        break;
    case BusName::Claim::Acquired:
        break;
    }
    const QuitOnSignals quitOnSignals;
    const ProgramAppearance appearance(options.appearance);
    const BarWatch barWatch;
    QObject::connect(&barWatch, &BarWatch::changed, &window, &PreferencesWindow::refresh);
    if (options.arguments.empty())
        select(window, options.select.value_or(HalvexPrefsBundleID));
    else
        showPane(window, findPaneAtPath(absolutePath(options.arguments[0])));
    return QApplication::exec();
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    return apps::runWindowProgram(argc, argv, "halvex-preferences", apps::kCommandLine,
                                  apps::runWindow);
}
