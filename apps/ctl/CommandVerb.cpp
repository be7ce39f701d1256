#include "apps/ctl/Verbs.h"
#include "menuextras/RunCommand.h"
#include "platform/base/NonCopyable.h"

#include <csignal>
#include <memory>
#include <optional>
#include <string>

namespace apps {
namespace {

/// Restores the default action of SIGPIPE for a scope. Commands inherit it and rely on being
/// terminated by a closed pipe.
class DefaultSigpipe : platform::NonCopyable {
  public:
    DefaultSigpipe() : previous_(std::signal(SIGPIPE, SIG_DFL)) {}
    ~DefaultSigpipe() { std::signal(SIGPIPE, previous_); }

  private:
    void (*previous_)(int);
};

ExitStatus runQuietly(const std::string& command) {
    const DefaultSigpipe sigpipe;
    HalvexRunCommand::HalvexRunNoOutput(command);
    return ExitStatus::Success;
}

std::optional<std::string> output(const std::string& command) {
    const DefaultSigpipe sigpipe;
    return HalvexRunCommand::HalvexUtilGetPipeData(command);
}

ExitStatus printOutput(const std::string& command) {
    const auto text = output(command);
    return text ? print(*text)
                : fail("the command's output cannot be printed: it is not ASCII or cannot be read");
}

} // namespace

void addCommandVerb(CLI::App& commands, Task& task) {
    struct Options {
        std::string command;
        bool quiet = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& verb =
        addVerb(commands, task, "command", "Run a shell command and print its output", [options] {
            return options->quiet ? runQuietly(options->command) : printOutput(options->command);
        });
    verb.add_option("COMMAND", options->command, "The command line")->required();
    verb.add_flag("--quiet", options->quiet, "Do not read the output");
}

} // namespace apps
