#include "apps/ctl/Verbs.h"
#include "menuextras/RunCommand.h"
#include "platform/base/NonCopyable.h"

#include <csignal>
#include <memory>
#include <string>

namespace apps {
namespace {

/// While it lives a closed pipe ends a process, as the commands that are started expect it; they
/// have this program's way with signals.
class ClosedPipesEnd : platform::NonCopyable {
  public:
    ClosedPipesEnd() : previous_(std::signal(SIGPIPE, SIG_DFL)) {}
    ~ClosedPipesEnd() { std::signal(SIGPIPE, previous_); }

  private:
    void (*previous_)(int);
};

ExitStatus runQuietly(const std::string& command) {
    const ClosedPipesEnd signals;
    HalvexRunCommand::HalvexRunNoOutput(command);
    return ExitStatus::Done;
}

std::optional<std::string> output(const std::string& command) {
    const ClosedPipesEnd signals;
    return HalvexRunCommand::HalvexUtilGetPipeData(command);
}

ExitStatus show(const std::string& command) {
    const auto text = output(command);
    return text ? print(*text) : refuse("the command has given no ASCII output");
}

} // namespace

void addCommandVerb(CLI::App& commands, Action& chosen) {
    struct Options {
        std::string command;
        bool quiet = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* verb = commands.add_subcommand("command", "Run a command line with the shell");
    verb->add_option("COMMAND", options->command, "The command line")->required();
    verb->add_flag("--quiet", options->quiet, "Do not read what it writes");
    verb->callback([options, &chosen] {
        chosen = [options] {
            return options->quiet ? runQuietly(options->command) : show(options->command);
        };
    });
}

} // namespace apps
