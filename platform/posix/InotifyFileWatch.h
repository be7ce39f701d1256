#pragma once

#include "platform/FileManager.h"

namespace platform::posix {

/// Implements FileManager::watchFile with inotify. Watches every folder and link in the path for
/// its removal, but only the folder in which the next component is missing for new entries. Other
/// files written in these folders therefore do not wake the process.
std::unique_ptr<Watch> makeInotifyFileWatch(const std::string& path, std::function<void()> handler);

} // namespace platform::posix
