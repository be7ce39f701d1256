#include "apps/ctl/Services.h"
#include "apps/ctl/Verbs.h"
#include "apps/ctl/WorkspaceDecorator.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/FileManager.h"
#include "platform/ScriptRunner.h"
#include "platform/qt/QtMainThread.h"
#include "prefs/HalvexPrefsTools.h"

#include <QCoreApplication>

#include <memory>
#include <optional>
#include <string>
#include <thread>

using platform::ScopedService;
using Tools = HalvexPrefsTools;

namespace apps {
namespace {

/// Records whether the last file was opened, which HalvexOpenPrefs does not return.
class RecordingWorkspace final : public WorkspaceDecorator {
  public:
    bool opened = false;

    using WorkspaceDecorator::openFile;
    bool openFile(const std::string& path, const std::string& withApplication) override {
        return opened = WorkspaceDecorator::openFile(path, withApplication);
    }
};

/// Records whether the last script failed, which openPrefsThread does not return.
class RecordingScriptRunner final : public platform::ScriptRunner {
  public:
    bool failed = false;

    std::optional<std::string> run(const std::string& script) override {
        auto error = original_.run(script);
        failed = error.has_value();
        return error;
    }

  private:
    platform::ScriptRunner& original_ = platform::scriptRunner();
    ScopedService<platform::ScriptRunner> guard_{*this};
};

ExitStatus printPath(const std::optional<std::string>& path) {
    return path ? print(*path + '\n') : ExitStatus::Failure;
}

ExitStatus openPane() {
    const RecordingWorkspace workspace;
    Tools::HalvexOpenPrefs();
    return workspace.opened ? ExitStatus::Success : ExitStatus::Failure;
}

ExitStatus selectPane(const std::string& identifier) {
    const RecordingScriptRunner scripts;
    Tools::openPrefsThread(identifier);
    return scripts.failed ? ExitStatus::Failure : ExitStatus::Success;
}

ExitStatus findApplication() {
    platform::ProcessSerialNumber process = 0;
    if (!Tools::findHalvexBGProcess(&process))
        return fail("the background application is not running");
    const auto identifier = processIdentifier(process);
    return print(std::to_string(process) + '\t' + std::to_string(identifier.value_or(0)) + '\n');
}

/// Hands over the request in the same way as an item in the bar: from a second thread, while the
/// main loop runs.
void handOver(const std::string& name) {
    int noArguments = 0;
    const QCoreApplication application(noArguments, nullptr);
    platform::qt::QtMainThread loop;
    const ScopedService<platform::MainThread> guard(loop);
    const auto item = std::make_shared<HalvexMenuExtraBase>();
    std::jthread thread;
    loop.perform(
        [&] {
            thread = std::jthread([&] {
                item->HalvexLaunchThread(name);
                loop.perform(QCoreApplication::quit, platform::MainThread::Wait::No);
            });
        },
        platform::MainThread::Wait::No);
    QCoreApplication::exec();
}

ExitStatus request(const std::string& name) {
    // Without this check, handOver() would wait for an application that cannot start.
    if (!Tools::findHalvexBGProcess(nullptr)) {
        const auto path = Tools::getHalvexBGApplicationPath();
        if (!path || !platform::fileManager().fileExists(*path))
            return fail("the background application is neither running nor installed");
    }
    handOver(name);
    return Tools::findHalvexBGProcess(nullptr) ? ExitStatus::Success
                                               : fail("the background application did not start");
}

} // namespace

void addBackgroundVerbs(CLI::App& commands, Task& task) {
    const auto text = std::make_shared<std::string>();
    CLI::App& prefs =
        addVerbGroup(commands, "prefs", "Open the preference pane, read and change preferences");
    addVerb(prefs, task, "path", "Print the path of the pane that \"prefs open\" opens",
            [] { return printPath(Tools::HalvexPrefsPath()); });
    addVerb(prefs, task, "open", "Open the pane", openPane);
    addVerb(prefs, task, "select", "Select a pane in halvex-preferences",
            [text] { return selectPane(*text); })
        .add_option("IDENTIFIER", *text, "The pane's bundle identifier")
        ->required();
    addPreferencesVerbs(prefs, task);

    CLI::App& background =
        addVerbGroup(commands, "background", "Control the background application");
    addVerb(background, task, "path", "Print the path of the application",
            [] { return printPath(Tools::getHalvexBGApplicationPath()); });
    addVerb(background, task, "find",
            "Print the application's serial number and process identifier", findApplication);
    addVerb(background, task, "request",
            "Start the application if necessary and post a notification",
            [text] { return request(*text); })
        .add_option("NAME", *text, "The notification, e.g. HalvexShowCalculatorNotification")
        ->required();
}

} // namespace apps
