#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Verbs.h"

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <unistd.h>
#include <vector>

namespace apps {
namespace {

/// Replaces this process with halvex-draw, which parses @p words itself.
ExitStatus execDraw(const std::string& verb, std::vector<std::string> words) {
    std::string program = (programFolder().parent_path() / "lib/halvex/halvex-draw").string();
    words.insert(words.begin(), {program, verb});
    std::vector<char*> arguments(words.size() + 1);
    std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
    ::execv(program.c_str(), arguments.data());
    return fail(program + ": " + std::generic_category().message(errno));
}

} // namespace

void addDrawingVerbs(CLI::App& commands, Task& task) {
    const auto add = [&](const std::string& name, const std::string& description) {
        CLI::App* verb = commands.add_subcommand(name, description);
        verb->prefix_command();
        verb->set_help_flag();
        verb->callback([verb, name, &task] {
            task.run = [name, words = verb->remaining()] { return execDraw(name, words); };
        });
    };
    add("hud", "Draw the dark panel into a file, or show it");
    add("panel", "Show a panel with all kinds of controls");
    add("tint", "Tint an image");
}

} // namespace apps
