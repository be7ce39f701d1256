#pragma once

#include "platform/FileManager.h"

namespace platform::posix {

/// What FileManager::watchFile promises. It watches every folder and link on the way to the file
/// for what goes, and for what comes only the folder in which the next one is missing, so that it
/// sleeps while others write their files.
std::unique_ptr<Watch> makeInotifyFileWatch(const std::string& path, std::function<void()> handler);

} // namespace platform::posix
