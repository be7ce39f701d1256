#include "menubar/PreferencesFile.h"

#include "platform/PathStrings.h"

std::string HalvexPreferencesFile() {
    return platform::expandingTildeInPath(
        "~/Library/Preferences/com.quorvanesoftware.HalvexPro.plist");
}
