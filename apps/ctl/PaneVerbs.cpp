#include "apps/ctl/InputFiles.h"
#include "apps/ctl/ProgramFolder.h"
#include "apps/ctl/Verbs.h"
#include "apps/shared/AbsolutePath.h"
#include "identifiers/ExportedIdentifiers.h"
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

std::string userPanePath() {
    return platform::expandingTildeInPath(HalvexProPrefsAUser);
}

/// Returns the pane of the build tree if this program is in one, otherwise the installed pane.
std::string shippedPane() {
    const std::string name = platform::lastPathComponent(HalvexProPrefsAllUsers);
    std::string built =
        appendingPathComponent(programFolder().parent_path().string(), "pane/" + name);
    return fileManager().fileExists(built) ? built
                                           : appendingPathComponent(HALVEX_PANES_FOLDER, name);
}

/// Returns why the bundle at @p path cannot be installed as the pane, or an empty string if it can.
std::string validatePane(const std::string& path) {
    std::string reason;
    const auto pane = Bundle::bundleWithPath(path, &reason);
    if (!pane || !pane->infoDictionary())
        return reason;
    if (pane->bundleIdentifier() != HalvexPrefsBundleID)
        return std::string("the bundle's identifier is not ") + HalvexPrefsBundleID;
    return {};
}

bool exists(const std::string& path) {
    return fileManager().fileExists(path) || fileManager().isSymbolicLink(path);
}

bool removeIfExists(const std::string& path) {
    return !exists(path) || fileManager().removeItem(path);
}

/// Moves the pane at @p target to @p backup, if there is one, and @p source to @p target. On
/// failure, moves everything back.
bool replacePane(const std::string& source, const std::string& target, const std::string& backup) {
    const bool replaces = exists(target);
    if (replaces && !fileManager().moveFile(target, backup))
        return false;
    if (fileManager().moveFile(source, target))
        return true;
    if (replaces)
        fileManager().moveFile(backup, target);
    return false;
}

/// Copies under a temporary name first, so that the user's pane is always either complete or
/// missing. Also removes temporary files left by an earlier run that was killed.
ExitStatus copyToUserPane(const std::string& source) {
    const std::string target = userPanePath();
    const std::string folder = deletingLastPathComponent(target);
    const std::string copy = appendingPathComponent(folder, ".halvex-pane-new");
    const std::string backup = appendingPathComponent(folder, ".halvex-pane-old");
    paths::makeHomeFolders(fileManager());
    ovxPaths::ovxMakeDirIfNeeded(folder);
    if (!removeIfExists(copy) || !removeIfExists(backup) || !fileManager().copyItem(source, copy))
        return fail(source + ": the pane cannot be copied to " + folder);
    if (!replacePane(copy, target, backup)) {
        removeIfExists(copy);
        return fail(target + ": the pane cannot be replaced");
    }
    return removeIfExists(backup) ? print(target + '\n')
                                  : fail(backup + ": the replaced pane cannot be removed");
}

ExitStatus install(const std::string& path) {
    // copyItem would copy the link itself.
    const std::string source = fileManager().resolvingSymbolicLinks(path);
    if (const std::string reason = validatePane(source); !reason.empty())
        return fail(path + ": " + reason);
    if (isSameFile(source, userPanePath()))
        return fail(path + ": this pane is already installed here");
    return copyToUserPane(source);
}

ExitStatus uninstall() {
    const std::string path = userPanePath();
    return removeIfExists(path) ? ExitStatus::Success : fail(path + ": the pane cannot be removed");
}

ExitStatus printPath() {
    const std::optional<std::string> pane = HalvexMenuExtraTools::HalvexPrefsPanelPath();
    return pane ? print(*pane + '\n') : fail("no preference pane is installed");
}

} // namespace

void addPaneVerbs(CLI::App& commands, Task& task) {
    const auto source = std::make_shared<std::string>();
    CLI::App& pane = addVerbGroup(commands, "pane", "Manage the preference pane");
    addVerb(pane, task, "path", "Print the path of the pane that the library uses", printPath);
    addVerb(pane, task, "install", "Install a copy of the pane for the user", [source] {
        return install(source->empty() ? shippedPane() : absolutePath(*source));
    }).add_option("PANE", *source, "The pane; default: the one shipped with this program");
    addVerb(pane, task, "uninstall", "Remove the user's copy", uninstall);
}

} // namespace apps
