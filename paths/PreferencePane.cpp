#include "paths/PreferencePane.h"

#include "menuextras/ExportedIdentifiers.h"
#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

using platform::Bundle;

namespace paths {

std::shared_ptr<Bundle> loadedPreferencePane() {
    return Bundle::bundleWithIdentifier(HalvexPrefsBundleID);
}

std::shared_ptr<Bundle> preferencePaneAt(const std::string& place) {
    const std::string path = platform::expandingTildeInPath(place);
    // Not one that has been removed, although this process may have seen it.
    return platform::fileManager().fileExists(path) ? Bundle::bundleWithPath(path) : nullptr;
}

std::shared_ptr<Bundle> installedPreferencePane() {
    auto everybodys = preferencePaneAt(HalvexProPrefsAllUsers);
    return everybodys ? everybodys : preferencePaneAt(HalvexProPrefsAUser);
}

} // namespace paths
