#include "menubar/PreferencesFile.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/FileManager.h"

namespace menubar {

std::string preferencesFile() {
    return platform::expandingTildeInPath(std::string("~/Library/Preferences/") + appHalvex4Prefs +
                                          ".plist");
}

} // namespace menubar
