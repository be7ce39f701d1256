#include "apps/ctl/Eventually.h"
#include "apps/ctl/InputFiles.h"
#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "platform/posix/StartProgram.h"
#include "platform/qt/BarClient.h"

#include <csignal>
#include <memory>
#include <string>

using platform::PropertyList;
using platform::qt::BarClient;
using platform::qt::BarItem;

namespace apps {
namespace {

/// Starts the bar beside this program; it logs where this program does.
bool startBar() {
    return platform::posix::startProgram(programFolder() / "halvex-menubar") == 0;
}

ExitStatus start() {
    BarClient bar;
    if (!bar.hasBus())
        return refuse("there is no session bus");
    if (bar.processIdentifier())
        return ExitStatus::Done;
    if (!startBar())
        return refuse("halvex-menubar is not beside this program");
    return eventually([&] { return bool(bar.processIdentifier()); })
               ? ExitStatus::Done
               : refuse("the menu bar did not start");
}

ExitStatus stop() {
    BarClient bar;
    const auto process = bar.processIdentifier().value;
    if (!process)
        return refuse("no menu bar is running");
    if (::kill(static_cast<pid_t>(*process), SIGTERM) != 0)
        return refuse("the menu bar is somebody else's");
    return eventually([&] { return bar.processIdentifier().value != process; })
               ? ExitStatus::Done
               : refuse("the menu bar did not end");
}

ExitStatus list(bool json) {
    const auto answer = BarClient().listMenuExtras();
    if (!answer)
        return refuse(answer.reason);
    PropertyList::Array rows;
    std::string text;
    for (const BarItem& item : *answer.value) {
        rows.emplace_back(PropertyList::Dictionary{{"identifier", item.identifier},
                                                   {"path", item.path},
                                                   {"position", item.position},
                                                   {"width", item.width}});
        text += item.identifier + '\t' + item.path + '\t' + std::to_string(item.position) + '\n';
    }
    return json ? print(std::move(rows), Format::Json) : print(text);
}

ExitStatus snapshot(const std::string& file) {
    const auto answer = BarClient().snapshot(absolutePath(file));
    if (!answer)
        return refuse(answer.reason);
    return *answer.value ? ExitStatus::Done : refuse(file + ": the picture was not written");
}

} // namespace

void addMenuBarVerbs(CLI::App& commands, Action& chosen) {
    struct Options {
        std::string file;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* bar = commands.add_subcommand("menubar", "The menu bar");
    bar->require_subcommand(0, 1);
    const auto add = [&](const char* name, const char* description, Action action) {
        CLI::App* verb = bar->add_subcommand(name, description);
        verb->callback([&chosen, action = std::move(action)] { chosen = action; });
        return verb;
    };
    add("start", "Start it unless it is running", start);
    add("stop", "End it", stop);
    addJsonFlag(
        *add("list", "Its items, from right to left", [options] { return list(options->json); }),
        options->json);
    add("snapshot", "Draw it into a PNG file", [options] { return snapshot(options->file); })
        ->add_option("FILE", options->file, "The picture")
        ->required();
    addBarItemVerbs(*bar, chosen);
}

} // namespace apps
