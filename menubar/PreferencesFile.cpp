#include "menubar/PreferencesFile.h"

#include "menuextras/ExportedIdentifiers.h"
#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

std::string HalvexPreferencesFile() {
    return platform::expandingTildeInPath(std::string("~/Library/Preferences/") + appHalvex4Prefs +
                                          ".plist");
}
