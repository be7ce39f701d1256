#include "paths/HomeFolders.h"

#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

using platform::appendingPathComponent;

namespace paths {

void makeHomeFolders(platform::FileManager& files) {
    const std::string library = appendingPathComponent(files.homeDirectory(), "Library");
    for (const std::string& folder :
         {library, appendingPathComponent(library, "Application Support"),
          appendingPathComponent(library, "Preferences")}) {
        if (!files.fileExists(folder))
            files.createDirectory(folder);
    }
}

} // namespace paths
