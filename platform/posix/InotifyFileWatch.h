#pragma once

#include "platform/FileManager.h"

namespace platform::posix {

/// Implements FileManager::watchFile with inotify. Watches every folder and link in the path for
/// removal. Watches for new entries only in a folder where the next component is missing or
/// unreadable, and in a folder at the end of the path, so that other files written in the path's
/// folders do not wake the process. Returns
/// null, and logs, if the system is out of inotify watches.
std::unique_ptr<Watch> makeInotifyFileWatch(const std::string& path, std::function<void()> handler);

} // namespace platform::posix
