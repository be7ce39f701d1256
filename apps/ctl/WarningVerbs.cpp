#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "paths/ovxPaths.h"

#include <memory>
#include <string>

namespace apps {

void addWarningVerbs(CLI::App& commands, Action& chosen) {
    struct Options {
        std::string name;
        std::string defaultFile;
        bool json = false;
    };
    const auto options = std::make_shared<Options>();

    CLI::App* warnings = commands.add_subcommand("warnings", "The lists of the timed warnings");
    warnings->add_option("NAME", options->name,
                         "Print this list, such as WarningTitles or WarnMeTimes");
    warnings->add_option("--default", options->defaultFile, "The list when there is no other");
    addJsonFlag(*warnings, options->json);

    CLI::App* hasCustom = warnings->add_subcommand("has-custom", "Whether there is an own list");
    hasCustom->add_option("NAME", options->name, "The list's name")->required();
    hasCustom->callback([options, &chosen] {
        chosen = [options] { return answer(HalvexFilePaths::hasCustomWarnMeFile(options->name)); };
    });

    warnings->callback([options, hasCustom, &chosen] {
        if (hasCustom->parsed())
            return;
        // Not required() itself: has-custom has a name of its own.
        if (options->name.empty())
            throw CLI::RequiredError("NAME");
        chosen = [options] {
            const std::string& file = options->defaultFile;
            return print(HalvexFilePaths::loadWarnMeTitles(
                             options->name, file.empty() ? file : absolutePath(file)),
                         formatFor(options->json));
        };
    });
}

} // namespace apps
