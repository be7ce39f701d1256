#include "apps/ctl/Verbs.h"
#include "menubar/HalvexMenuExtraBase.h"
#include "platform/FileManager.h"
#include "platform/ScriptRunner.h"
#include "platform/posix/PosixProcessList.h"
#include "platform/posix/PosixWorkspace.h"
#include "platform/qt/QtMainThread.h"
#include "prefs/HalvexPrefsTools.h"

#include <QCoreApplication>

#include <memory>
#include <string>
#include <thread>
#include <utility>

using platform::ScopedService;
using Tools = HalvexPrefsTools;

namespace apps {
namespace {

/// Remembers whether the last file could be opened, which the library's operation does not tell.
class Workspace final : public platform::posix::PosixWorkspace {
  public:
    bool opened = false;

    using PosixWorkspace::openFile;
    bool openFile(const std::string& path, const std::string& withApplication) override {
        return opened = PosixWorkspace::openFile(path, withApplication);
    }

  private:
    ScopedService<platform::Workspace> service_{*this};
};

/// The same for the last script.
class Scripts final : public platform::ScriptRunner {
  public:
    bool failed = false;

    std::optional<std::string> run(const std::string& script) override {
        auto error = runner_.run(script);
        failed = error.has_value();
        return error;
    }

  private:
    platform::ScriptRunner& runner_ = platform::scriptRunner();
    ScopedService<platform::ScriptRunner> service_{*this};
};

ExitStatus showPane() {
    const auto path = Tools::HalvexPrefsPath();
    return path ? print(*path + '\n') : ExitStatus::Refused;
}

ExitStatus openPane() {
    const Workspace workspace;
    Tools::HalvexOpenPrefs();
    return workspace.opened ? ExitStatus::Done : ExitStatus::Refused;
}

ExitStatus selectPane(const std::string& identifier) {
    const Scripts scripts;
    Tools::openPrefsThread(identifier);
    return scripts.failed ? ExitStatus::Refused : ExitStatus::Done;
}

ExitStatus showApplication() {
    const auto path = Tools::getHalvexBGApplicationPath();
    return path ? print(*path + '\n') : ExitStatus::Refused;
}

ExitStatus findApplication() {
    platform::ProcessSerialNumber process = 0;
    if (!Tools::findHalvexBGProcess(&process))
        return refuse("the background application is not running");
    const auto identifier = platform::posix::processIdentifier(process);
    return print(std::to_string(process) + '\t' + std::to_string(identifier.value_or(0)) + '\n');
}

/// Hands the request over as an item in the bar does, with a main loop for as long as that takes.
void handOver(const std::string& name) {
    int noArguments = 0;
    const QCoreApplication application(noArguments, nullptr);
    platform::qt::QtMainThread loop;
    const ScopedService<platform::MainThread> service(loop);
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
    // An item would wait here for what cannot come.
    if (!Tools::findHalvexBGProcess(nullptr)) {
        const auto path = Tools::getHalvexBGApplicationPath();
        if (!path || !platform::fileManager().fileExists(*path))
            return refuse("the background application is neither running nor installed");
    }
    handOver(name);
    return Tools::findHalvexBGProcess(nullptr) ? ExitStatus::Done
                                               : refuse("the background application did not start");
}

CLI::App& add(CLI::App& verbs, Action& chosen, const char* name, const char* description,
              Action action) {
    CLI::App* verb = verbs.add_subcommand(name, description);
    verb->callback([&chosen, action = std::move(action)] { chosen = action; });
    return *verb;
}

} // namespace

void addBackgroundVerbs(CLI::App& commands, Action& chosen) {
    const auto text = std::make_shared<std::string>();
    CLI::App* prefs = commands.add_subcommand("prefs", "The preference pane, in its program");
    prefs->require_subcommand(0, 1);
    add(*prefs, chosen, "path", "Print which pane is opened", showPane);
    add(*prefs, chosen, "open", "Open it", openPane);
    add(*prefs, chosen, "select", "Select a pane", [text] { return selectPane(*text); })
        .add_option("IDENTIFIER", *text, "The pane's bundle identifier")
        ->required();

    CLI::App* background = commands.add_subcommand("background", "The background application");
    background->require_subcommand(0, 1);
    add(*background, chosen, "path", "Print where it is looked for", showApplication);
    add(*background, chosen, "find", "Print its serial number and process identifier",
        findApplication);
    add(*background, chosen, "request", "Start it if need be, and notify it",
        [text] { return request(*text); })
        .add_option("NAME", *text, "The notification, e.g. HalvexShowCalculatorNotification")
        ->required();
}

} // namespace apps
