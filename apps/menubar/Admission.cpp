#include "apps/menubar/Admission.h"

#include "identifiers/ExportedIdentifiers.h"
#include "menuextras/MenuExtraCatalogue.h"
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

bool isIn(const std::string& resolvedPath, const std::string& folder) {
    return deletingLastPathComponent(resolvedPath) == fileManager().resolvingSymbolicLinks(folder);
}

bool isCrackerInPane(const std::string& resolvedPath) {
    const std::string plugIns = deletingLastPathComponent(resolvedPath);
    const std::string contents = deletingLastPathComponent(plugIns);
    if (lastPathComponent(plugIns) != "PlugIns" || lastPathComponent(contents) != "Contents" ||
        pathExtension(deletingLastPathComponent(contents)) != "prefPane")
        return false;
    const auto bundle = Bundle::bundleWithPath(resolvedPath);
    return bundle && bundle->bundleIdentifier() == menuextras::kMenuCrackerID;
}

} // namespace

Admission::Admission(Admit mode, std::string ownItemsFolder)
    : mode_(mode), ownItemsFolder_(std::move(ownItemsFolder)) {}

std::string Admission::refusalReason(const std::string& path, Cracker cracker) const {
    const std::string resolved = fileManager().resolvingSymbolicLinks(path);
    if (mode_ == Admit::All || isIn(resolved, ownItemsFolder_) || isCrackerInPane(resolved))
        return {};
    if (mode_ == Admit::System && cracker == Cracker::NotLoaded)
        return "the bar admits only its own items";
    if (!isIn(resolved, userItemsFolder()))
        return "it is not in " + userItemsFolder();
    return {};
}

} // namespace apps
