#include "apps/ctl/Services.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "apps/shared/CommandLine.h"
#include "apps/shared/Output.h"

#include <cstdlib>
#include <iostream>
#include <string>

namespace apps {
namespace {

/// Prints the text of --help or --version, or the usage error.
ExitStatus reportParseError(const CLI::App& commandLine, const CLI::ParseError& error) {
    return commandLine.exit(error) == 0 ? flushOutput() : ExitStatus::UsageError;
}

ExitStatus run(int argc, char** argv) {
    std::string root;
    Task task;
    CLI::App commandLine("Inspect and change HalvexTools' folders, data files and menu bar.",
                         "halvexctl");
    commandLine.set_version_flag("--version", HALVEX_VERSION);
    commandLine
        .add_option("--root", root, "Use the folder Library in this folder instead of /Library")
        ->check(CLI::ExistingDirectory);
    commandLine.require_subcommand(0, 1);
    for (const auto& addVerbs :
         {addExtraVerbs, addMenuBarVerbs, addPaneVerbs, addBackgroundVerbs, addPathVerbs,
          addLocationVerbs, addWarningVerbs, addPlistVerb, addDateFormatVerb, addCommandVerb,
          addDrawingVerbs, addFeedbackVerb, addNewVerb})
        addVerbs(commandLine, task);
    try {
        parseArguments(commandLine, argc, argv);
        // Not left to CLI11, whose error would not name an unknown verb.
        if (!task.run)
            throw CLI::RequiredError("A verb");
    } catch (const CLI::ParseError& error) {
        return reportParseError(commandLine, error);
    }
    const Services services(absolutePath(root), task.missingFolders);
    return task.run();
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    apps::prepareStandardStreams();
    const apps::ExitStatus status = apps::run(argc, argv);
    std::cout.flush();
    // Skips Qt's static destructors, which warn about a bus connection whose thread still runs.
    std::_Exit(static_cast<int>(status));
}
