#pragma once

#include "platform/FileManager.h"

#include <string>

namespace paths {

/// Returns whether @p path exists and is not a folder.
inline bool isFile(const std::string& path) {
    bool isDirectory = false;
    return platform::fileManager().fileExists(path, &isDirectory) && !isDirectory;
}

} // namespace paths
