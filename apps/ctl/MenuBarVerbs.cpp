#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"
#include "platform/Clock.h"
#include "platform/Event.h"
#include "platform/posix/StartProgram.h"
#include "platform/qt/BarClient.h"

#include <csignal>
#include <filesystem>
#include <memory>
#include <string>
#include <vector>

using platform::PropertyList;
using platform::qt::BarClient;
using platform::qt::BarItem;

namespace {

constexpr int kTries = 100;
constexpr std::uint64_t kBetweenTries = 50'000; // microseconds

/// Whether @p condition becomes true within five seconds.
template <class Condition>
bool eventually(Condition condition) {
    for (int i = 0; i < kTries; ++i) {
        if (condition())
            return true;
        platform::systemClock().sleep(kBetweenTries);
    }
    return condition();
}

/// Starts the bar beside this program; it logs where this program does.
bool startBar() {
    std::error_code ignored;
    const auto self = std::filesystem::read_symlink("/proc/self/exe", ignored);
    return platform::posix::startProgram(self.parent_path() / "halvex-menubar") == 0;
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

struct Click {
    std::string identifier;
    std::vector<std::string> modifiers;
    std::int32_t button = 0;
    std::int32_t count = 1;
};

ExitStatus click(const Click& wanted) {
    platform::Event event{
        .modifierFlags = 0, .clickCount = wanted.count, .buttonNumber = wanted.button};
    for (const std::string& modifier : wanted.modifiers)
        event.modifierFlags |= modifier == "shift"     ? platform::kShiftKeyMask
                               : modifier == "control" ? platform::kControlKeyMask
                                                       : platform::kOptionKeyMask;
    BarClient bar;
    platform::MenuExtraReference reference = 0;
    if (bar.getMenuExtra(wanted.identifier, reference) != 0 || reference == 0)
        return refuse(wanted.identifier + " is not loaded");
    const auto consumed = bar.click(wanted.identifier, event);
    if (!consumed)
        return refuse(consumed.reason);
    return print(*consumed.value ? "handled\n" : "menu\n");
}

void addClickVerb(CLI::App& bar, Action& chosen) {
    const auto wanted = std::make_shared<Click>();
    CLI::App* verb = bar.add_subcommand("click", "Click an item, and print what came of it");
    verb->add_option("IDENTIFIER", wanted->identifier, "The item")->required();
    verb->add_option("--modifiers", wanted->modifiers, "shift, control, option")
        ->delimiter(',')
        ->check(CLI::IsMember({"shift", "control", "option"}));
    verb->add_option("--button", wanted->button, "0 left, 1 right, 2 middle, 3 the next")
        ->check(CLI::Range(0, 31));
    verb->add_option("--count", wanted->count, "2 for a double click")->check(CLI::Range(1, 1000));
    verb->callback([&chosen, wanted] { chosen = [wanted] { return click(*wanted); }; });
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
    addClickVerb(*bar, chosen);
}
