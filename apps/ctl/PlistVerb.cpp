#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"

#include <memory>
#include <string>

namespace apps {

void addPlistVerb(CLI::App& commands, Task& task) {
    struct Options {
        std::string file;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App& verb =
        addVerb(commands, task, "plist", "Print a property list as XML or JSON", [options] {
            const auto value = readPropertyList(options->file);
            return value ? print(*value, formatFor(options->json)) : ExitStatus::Failure;
        });
    verb.add_option("FILE", options->file, "The property list")->required();
    addJsonFlag(verb, options->json);
}

} // namespace apps
