#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "paths/ovxPaths.h"

#include <memory>
#include <string>

namespace apps {
namespace {

struct Options {
    std::string name;
    std::string defaultFile;
    bool json = false;
};

ExitStatus show(const Options& options) {
    const std::string& file = options.defaultFile;
    return print(
        HalvexFilePaths::loadWarnMeTitles(options.name, file.empty() ? file : absolutePath(file)),
        formatFor(options.json));
}

} // namespace

void addWarningVerbs(CLI::App& commands, Task& task) {
    const auto options = std::make_shared<Options>();

    CLI::App* warnings = commands.add_subcommand("warnings", "Print a list of timed warnings");
    warnings->add_option("NAME", options->name, "The list, e.g. WarningTitles or WarnMeTimes");
    warnings->add_option("--default", options->defaultFile,
                         "The list to print if NAME is not found");
    addJsonFlag(*warnings, options->json);

    CLI::App& hasCustom = addVerb(
        *warnings, task, "has-custom", "Print whether a custom list replaces the default",
        [options] { return printYesOrNo(HalvexFilePaths::hasCustomWarnMeFile(options->name)); });
    hasCustom.add_option("NAME", options->name, "The list's name")->required();

    warnings->callback([options, &hasCustom, &task] {
        if (hasCustom.parsed())
            return;
        // Not required(), because has-custom takes its own NAME.
        if (options->name.empty())
            throw CLI::RequiredError("NAME");
        task.run = [options] { return show(*options); };
    });
}

} // namespace apps
