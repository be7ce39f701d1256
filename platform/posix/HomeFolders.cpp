#include "platform/posix/HomeFolders.h"

#include "platform/FileManager.h"
#include "platform/base/PathStrings.h"

void platform::posix::makeHomeFolders(FileManager& files) {
    const std::string library = appendingPathComponent(files.homeDirectory(), "Library");
    for (const std::string& folder :
         {library, appendingPathComponent(library, "Application Support"),
          appendingPathComponent(library, "Preferences")}) {
        if (!files.fileExists(folder))
            files.createDirectory(folder);
    }
}
