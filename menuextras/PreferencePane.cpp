#include "menuextras/PreferencePane.h"

#include "menuextras/ExportedIdentifiers.h"
#include "platform/FileManager.h"
#include "platform/PathStrings.h"

using platform::Bundle;

namespace {

/// A pane that has been removed is not taken for one because this process has seen it.
std::shared_ptr<Bundle> paneAt(const std::string& path) {
    return platform::fileManager().fileExists(path) ? Bundle::bundleWithPath(path) : nullptr;
}

} // namespace

std::shared_ptr<Bundle> loadedPreferencePane() {
    return Bundle::bundleWithIdentifier(HalvexPrefsBundleID);
}

std::shared_ptr<Bundle> installedPreferencePane() {
    if (auto everybodys = paneAt(HalvexProPrefsAllUsers))
        return everybodys;
    return paneAt(platform::expandingTildeInPath(HalvexProPrefsAUser));
}
