#include "apps/ctl/InputFiles.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "apps/shared/Output.h"
#include "platform/expat/ExpatPropertyLists.h"
#include "platform/posix/PosixFileManager.h"
#include "platform/qt/BarClient.h"
#include "platform/qt/BusNotifications.h"

#include <cstdlib>
#include <iostream>
#include <string>

namespace apps {

void addJsonFlag(CLI::App& verb, bool& json) {
    verb.add_flag("--json", json, "Print JSON");
}

namespace {

/// What --help and --version print is a result as well; everything else is wrong usage.
ExitStatus explain(const CLI::App& commandLine, const CLI::ParseError& error) {
    return commandLine.exit(error) == 0 ? finishOutput() : ExitStatus::WrongUsage;
}

ExitStatus run(int argc, char** argv) {
    std::string root;
    Action chosen;
    CLI::App commandLine("Looks at the product's folders and data files, and changes them.",
                         "halvexctl");
    commandLine.set_version_flag("--version", HALVEX_VERSION);
    commandLine.add_option("--root", root, "A folder whose Library takes the place of /Library")
        ->check(CLI::ExistingDirectory);
    commandLine.require_subcommand(0, 1);
    for (const auto& addVerbs :
         {addExtraVerbs, addMenuBarVerbs, addPaneVerbs, addBackgroundVerbs, addPathVerbs,
          addLocationVerbs, addWarningVerbs, addPlistVerb, addDateFormatVerb, addCommandVerb,
          addDrawingVerbs, addFeedbackVerb})
        addVerbs(commandLine, chosen);
    try {
        commandLine.parse(argc, argv);
        // Asked of CLI11, this would hide which word it was that is no verb.
        if (!chosen)
            throw CLI::RequiredError("A verb");
    } catch (const CLI::ParseError& error) {
        return explain(commandLine, error);
    }
    platform::expat::install();
    platform::posix::PosixFileManager files(absolutePath(root));
    const platform::ScopedService<platform::FileManager> guard(files);
    platform::qt::BarClient bar; // connects when it is asked
    const platform::ScopedService<platform::MenuExtraServer> barGuard(bar);
    platform::qt::BusNotifications notifications; // connects with the first one
    const platform::ScopedService<platform::DistributedNotificationCenter> centerGuard(
        notifications);
    const ExitStatus status = chosen();
    notifications.flush();
    return status;
}

} // namespace

} // namespace apps

int main(int argc, char** argv) {
    apps::prepareStandardStreams();
    const apps::ExitStatus status = apps::run(argc, argv);
    std::cout.flush();
    // The bus connection's thread may still be at work, which Qt complains about while it takes
    // itself apart.
    std::_Exit(static_cast<int>(status));
}
