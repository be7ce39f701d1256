#include "apps/menubar/Admission.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
#include "menuextras/MenuExtraTools.h"
#include "platform/Bundle.h"
#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

#include <utility>

using namespace platform;

namespace apps {
namespace {

/// HalvexFilePaths also computes this path, but creates the folder as a side effect.
std::string userItemsFolder() {
    std::string folder = fileManager().homeDirectory();
    for (const char* name :
         {"Library", "Application Support", quorvaneSoftwareFolder, HalvexMenuExtraFolder})
        folder = appendingPathComponent(folder, name);
    return folder;
}

bool isIn(const std::string& path, const std::string& folder) {
    return deletingLastPathComponent(path) == fileManager().resolvingSymbolicLinks(folder);
}

/// The library requests MenuCracker from this pane.
bool isCrackerInPane(const std::string& path) {
    const auto plugIns = HalvexMenuExtraTools::HalvexPrefsPlugins();
    if (!plugIns || !isIn(path, *plugIns))
        return false;
    const auto bundle = Bundle::bundleWithPath(path);
    return bundle && bundle->bundleIdentifier() == menuextras::kMenuCrackerID;
}

} // namespace

Admission::Admission(Admit mode, std::string ownItemsFolder)
    : mode_(mode), ownItemsFolder_(std::move(ownItemsFolder)) {}

std::string Admission::refusalReason(const std::string& path, Cracker cracker) const {
    if (mode_ == Admit::All || isIn(path, ownItemsFolder_) || isCrackerInPane(path))
        return {};
    if (mode_ == Admit::System && cracker == Cracker::NotLoaded)
        return "the bar admits only its own items";
    if (!isIn(path, userItemsFolder()))
        return "it is not in " + userItemsFolder();
    return {};
}

} // namespace apps
