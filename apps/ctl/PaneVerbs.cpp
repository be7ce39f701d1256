#include "apps/ctl/InputFiles.h"
#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "menuextras/ExportedIdentifiers.h"
#include "menuextras/MenuExtraTools.h"
#include "paths/HomeFolders.h"
#include "paths/ovxPaths.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

#include <memory>
#include <optional>
#include <string>

using platform::appendingPathComponent;
using platform::Bundle;
using platform::deletingLastPathComponent;
using platform::fileManager;

namespace apps {
namespace {

std::string usersPlace() {
    return platform::expandingTildeInPath(HalvexProPrefsAUser);
}

/// The pane that came with this program: in a build tree the one beside it, else the installed one.
std::string shippedPane() {
    const std::string name = platform::lastPathComponent(HalvexProPrefsAllUsers);
    std::string built =
        appendingPathComponent(programFolder().parent_path().string(), "pane/" + name);
    return fileManager().fileExists(built) ? built
                                           : appendingPathComponent(HALVEX_PANES_FOLDER, name);
}

/// Why what is at @p path cannot be installed as the pane; empty when it can.
std::string reasonAgainst(const std::string& path) {
    std::string reason;
    const auto pane = Bundle::bundleWithPath(path, &reason);
    if (!pane || !pane->infoDictionary())
        return reason;
    if (pane->bundleIdentifier() != HalvexPrefsBundleID)
        return std::string("this bundle is not ") + HalvexPrefsBundleID;
    return {};
}

bool isTaken(const std::string& path) {
    return fileManager().fileExists(path) || fileManager().isSymbolicLink(path);
}

bool clear(const std::string& path) {
    return !isTaken(path) || fileManager().removeItem(path);
}

/// Puts the pane at @p fresh into @p place and what was there to @p old. On failure nothing is
/// moved.
bool exchange(const std::string& fresh, const std::string& place, const std::string& old) {
    const bool replaces = isTaken(place);
    if (replaces && !fileManager().moveFile(place, old))
        return false;
    if (fileManager().moveFile(fresh, place))
        return true;
    if (replaces)
        fileManager().moveFile(old, place);
    return false;
}

/// The copy is made under a name beside the user's place, so that there is always a whole pane or
/// none. What a run that was killed has left under that name and the old one's is cleared first.
ExitStatus copyToUsersPlace(const std::string& source) {
    const std::string place = usersPlace();
    const std::string folder = deletingLastPathComponent(place);
    const std::string fresh = appendingPathComponent(folder, ".halvex-pane-new");
    const std::string old = appendingPathComponent(folder, ".halvex-pane-old");
    paths::makeHomeFolders(fileManager());
    ovxPaths::ovxMakeDirIfNeeded(folder);
    if (!clear(fresh) || !clear(old) || !fileManager().copyItem(source, fresh))
        return refuse(source + ": cannot be copied to " + folder);
    if (!exchange(fresh, place, old)) {
        clear(fresh);
        return refuse(place + ": cannot be replaced");
    }
    return clear(old) ? print(place + '\n') : refuse(old + ": the replaced pane cannot be removed");
}

ExitStatus install(const std::string& given) {
    // A link to a pane is as good as the pane, but not what is to be copied.
    const std::string source = fileManager().resolvingSymbolicLinks(given);
    if (const std::string reason = reasonAgainst(source); !reason.empty())
        return refuse(given + ": " + reason);
    if (samePlace(source, usersPlace()))
        return refuse(given + ": this is the installed pane itself");
    return copyToUsersPlace(source);
}

ExitStatus uninstall() {
    const std::string place = usersPlace();
    return clear(place) ? ExitStatus::Done : refuse(place + ": cannot be removed");
}

ExitStatus showPath() {
    const std::optional<std::string> pane = HalvexMenuExtraTools::HalvexPrefsPanelPath();
    return pane ? print(*pane + '\n') : refuse("no preference pane is installed");
}

} // namespace

void addPaneVerbs(CLI::App& commands, Action& chosen) {
    const auto source = std::make_shared<std::string>();
    CLI::App* pane = commands.add_subcommand("pane", "The preference pane, which ships the items");
    pane->require_subcommand(0, 1);
    const auto add = [&](const char* name, const char* description, Action action) {
        CLI::App* verb = pane->add_subcommand(name, description);
        verb->callback([&chosen, action = std::move(action)] { chosen = action; });
        return verb;
    };
    add("path", "Print where the library finds it", showPath);
    add("install", "Copy it into the user's Library", [source] {
        return install(source->empty() ? shippedPane() : absolutePath(*source));
    })->add_option("PANE", *source, "The pane; the one that came with this program without it");
    add("uninstall", "Remove the user's copy", uninstall);
}

} // namespace apps
