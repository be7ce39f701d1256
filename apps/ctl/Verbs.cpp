#include "apps/ctl/Verbs.h"

#include <utility>

namespace apps {

CLI::App& addVerb(CLI::App& parent, Task& task, const std::string& name,
                  const std::string& description, std::function<ExitStatus()> run,
                  MissingFolders missingFolders) {
    CLI::App* verb = parent.add_subcommand(name, description);
    verb->callback([&task, run = std::move(run), missingFolders] { task = {run, missingFolders}; });
    return *verb;
}

CLI::App& addVerbGroup(CLI::App& parent, const std::string& name, const std::string& description) {
    CLI::App* group = parent.add_subcommand(name, description);
    group->require_subcommand(0, 1); // main reports a missing verb
    return *group;
}

void addJsonFlag(CLI::App& verb, bool& json) {
    verb.add_flag("--json", json, "Print JSON");
}

} // namespace apps
