#include "paths/PreferencePane.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

using platform::Bundle;

namespace paths {

std::shared_ptr<Bundle> loadedPreferencePane() {
    return Bundle::bundleWithIdentifier(HalvexPrefsBundleID);
}

std::shared_ptr<Bundle> preferencePaneAt(const std::string& path) {
    const std::string expanded = platform::expandingTildeInPath(path);
    // bundleWithPath also returns a bundle that was opened earlier and has been removed since.
    return platform::fileManager().fileExists(expanded) ? Bundle::bundleWithPath(expanded)
                                                        : nullptr;
}

std::shared_ptr<Bundle> installedPreferencePane() {
    auto forAllUsers = preferencePaneAt(HalvexProPrefsAllUsers);
    return forAllUsers ? forAllUsers : preferencePaneAt(HalvexProPrefsAUser);
}

} // namespace paths
