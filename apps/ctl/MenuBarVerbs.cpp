#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Services.h"
#include "apps/ctl/Verbs.h"
#include "apps/ctl/WaitUntil.h"
#include "apps/shared/AbsolutePath.h"
#include "platform/qt/BarClient.h"

#include <cerrno>
#include <csignal>
#include <cstdint>
#include <memory>
#include <string>
#include <system_error>

using platform::PropertyList;
using platform::qt::BarClient;
using platform::qt::BarItem;
using platform::qt::KnownItem;

namespace apps {
namespace {

constexpr int kPatience = 2; // seconds

ExitStatus start() {
    BarClient bar;
    if (!bar.hasBus())
        return fail("cannot start the menu bar: there is no session bus");
    if (bar.processIdentifier())
        return ExitStatus::Success;
    const std::string program = programFolder() / "halvex-menubar";
    if (const int error = startProgram(program); error != 0)
        return fail(program + ": " + std::generic_category().message(error));
    return waitUntil([&] { return bool(bar.processIdentifier()); })
               ? ExitStatus::Success
               : fail("the menu bar did not start: it is not on the session bus");
}

/// Returns whether SIGTERM could be sent. Otherwise prints the reason.
bool terminate(std::uint32_t process) {
    if (::kill(static_cast<pid_t>(process), SIGTERM) == 0)
        return true;
    printError("the menu bar cannot be stopped: " + std::generic_category().message(errno));
    return false;
}

ExitStatus stop() {
    BarClient bar;
    const auto process = bar.processIdentifier().value;
    if (!process)
        return fail("no menu bar is running");
    const auto hasExited = [&] { return bar.processIdentifier().value != process; };
    if (!terminate(*process))
        return ExitStatus::Failure;
    if (waitUntil(hasExited, kPatience))
        return ExitStatus::Success;
    // A bar that hangs exits immediately at a second signal, without unloading its items.
    if (!terminate(*process) && !hasExited())
        return ExitStatus::Failure;
    if (!waitUntil(hasExited))
        return fail("the menu bar did not exit: it is still on the session bus");
    printError("the menu bar did not respond and was forced to exit");
    return ExitStatus::Success;
}

ExitStatus list(bool json) {
    const auto items = BarClient().listMenuExtras();
    if (!items)
        return fail(items.reason);
    PropertyList::Array rows;
    std::string text;
    for (const BarItem& item : *items.value) {
        rows.emplace_back(PropertyList::Dictionary{{"identifier", item.identifier},
                                                   {"path", item.path},
                                                   {"position", item.position},
                                                   {"width", item.width}});
        text += item.identifier + '\t' + item.path + '\t' + std::to_string(item.position) + '\n';
    }
    return json ? print(std::move(rows), Format::Json) : print(text);
}

ExitStatus listKnown(bool json) {
    const auto items = BarClient().items();
    if (!items)
        return fail(items.reason);
    PropertyList::Array rows;
    std::string text;
    for (const KnownItem& item : *items.value) {
        rows.emplace_back(PropertyList::Dictionary{{"identifier", item.identifier},
                                                   {"path", item.path},
                                                   {"position", item.position},
                                                   {"width", item.width},
                                                   {"version", item.version},
                                                   {"name", item.name},
                                                   {"own", item.isOwn},
                                                   {"state", item.state},
                                                   {"reason", item.reason}});
        text += item.identifier + '\t' + item.path + '\t' + std::to_string(item.position) + '\t' +
                (item.reason.empty() ? item.state : problemOf(item)) + '\n';
    }
    return json ? print(std::move(rows), Format::Json) : print(text);
}

ExitStatus snapshot(const std::string& file, const std::string& item) {
    BarClient bar;
    const std::string path = absolutePath(file);
    const auto written = item.empty() ? bar.snapshot(path) : bar.snapshotItem(item, path);
    if (!written)
        return fail(written.reason);
    return *written.value ? ExitStatus::Success : fail(file + ": the picture cannot be written");
}

ExitStatus focus() {
    const std::string reason = BarClient().focus();
    return reason.empty() ? ExitStatus::Success : fail(reason);
}

} // namespace

void addMenuBarVerbs(CLI::App& commands, Task& task) {
    struct Options {
        std::string file;
        std::string item;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& bar = addVerbGroup(commands, "menubar", "Control the menu bar and its items");
    addVerb(bar, task, "start", "Start the bar unless it is running", start);
    addVerb(bar, task, "stop", "Stop the bar", stop);
    addVerb(bar, task, "focus", "Open the leftmost item's menu and use the bar with the keyboard",
            focus);
    CLI::App& listing = addVerb(bar, task, "list", "List the items by position, rightmost first",
                                [options] { return list(options->json); });
    addJsonFlag(listing, options->json);
    CLI::App& knownItems =
        addVerb(bar, task, "items", "List all known items and their states, loaded or not",
                [options] { return listKnown(options->json); });
    addJsonFlag(knownItems, options->json);
    CLI::App& drawing = addVerb(bar, task, "snapshot", "Draw the bar into a PNG file",
                                [options] { return snapshot(options->file, options->item); });
    drawing.add_option("FILE", options->file, "The picture")->required();
    drawing.add_option("--item", options->item, "Draw only the item with this identifier");
    addBarItemVerbs(bar, task);
}

} // namespace apps
