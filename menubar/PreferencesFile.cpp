#include "menubar/PreferencesFile.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/FileManager.h"
#include "platform/Operation.h"

namespace menubar {

std::string preferencesFile() {
    return platform::guardedOperation([&] {
        return platform::expandingTildeInPath(std::string("~/Library/Preferences/") +
                                              appHalvex4Prefs + ".plist");
    });
}

} // namespace menubar
