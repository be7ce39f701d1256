#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "paths/HomeFolders.h"
#include "paths/ovxPaths.h"
#include "platform/FileManager.h"

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
    paths::makeHomeFolders(platform::fileManager());
    const std::string& file = options.defaultFile;
    return print(
        HalvexFilePaths::loadWarnMeTitles(options.name, file.empty() ? file : absolutePath(file)),
        formatFor(options.json));
}

ExitStatus hasCustom(const std::string& name) {
    paths::makeHomeFolders(platform::fileManager());
    return printYesOrNo(HalvexFilePaths::hasCustomWarnMeFile(name));
}

} // namespace

void addWarningVerbs(CLI::App& commands, Task& task) {
    const auto options = std::make_shared<Options>();

    CLI::App* warnings = commands.add_subcommand("warnings", "Print a list of timed warnings");
    warnings->add_option("NAME", options->name, "The list, e.g. WarningTitles or WarnMeTimes");
    warnings->add_option("--default", options->defaultFile,
                         "The list to print if NAME is not found");
    addJsonFlag(*warnings, options->json);

    CLI::App& customVerb = addVerb(
        *warnings, task, "has-custom", "Print whether a custom list replaces the default",
        [options] { return hasCustom(options->name); }, MissingFolders::CreateIfPossible);
    customVerb.add_option("NAME", options->name, "The list's name")->required();

    warnings->callback([options, &customVerb, &task] {
        if (customVerb.parsed())
            return;
        // Not required(), because has-custom takes its own NAME.
        if (options->name.empty())
            throw CLI::RequiredError("NAME");
        task = {[options] { return show(*options); }, MissingFolders::CreateIfPossible};
    });
}

} // namespace apps
