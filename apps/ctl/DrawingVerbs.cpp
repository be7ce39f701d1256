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

/// The program that draws, beside the library in an installation and in a build tree.
std::string drawingProgram() {
    return (programFolder().parent_path() / "lib/halvex/halvex-draw").string();
}

/// Lets the program that draws take this one's place. It understands the words behind the verb.
ExitStatus draw(const std::string& verb, std::vector<std::string> words) {
    std::string program = drawingProgram();
    words.insert(words.begin(), {program, verb});
    std::vector<char*> arguments(words.size() + 1);
    std::ranges::transform(words, arguments.begin(), [](std::string& word) { return word.data(); });
    ::execv(program.c_str(), arguments.data());
    return refuse(program + ": " + std::generic_category().message(errno));
}

} // namespace

void addDrawingVerbs(CLI::App& commands, Action& chosen) {
    const auto add = [&](const std::string& name, const std::string& description) {
        CLI::App* verb = commands.add_subcommand(name, description);
        verb->prefix_command();
        verb->set_help_flag();
        verb->callback([verb, name, &chosen] {
            chosen = [name, words = verb->remaining()] { return draw(name, words); };
        });
    };
    add("hud", "Draw the dark panel, or show it");
    add("tint", "Tint an image");
}

} // namespace apps
