#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"

#include <memory>
#include <string>

namespace apps {

void addPlistVerb(CLI::App& commands, Action& chosen) {
    struct Options {
        std::string file;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();
    CLI::App* plist = commands.add_subcommand("plist", "Read a property list and print it");
    plist->add_option("FILE", options->file, "The property list")->required();
    addJsonFlag(*plist, options->json);
    plist->callback([options, &chosen] {
        chosen = [options] {
            const auto value = readPropertyList(options->file);
            return value ? print(*value, formatFor(options->json)) : ExitStatus::Refused;
        };
    });
}

} // namespace apps
