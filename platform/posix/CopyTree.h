#pragma once

#include "platform/FileManager.h"
#include "platform/posix/SystemCalls.h"

#include <string>

namespace platform::posix {

/// Implements FileManager::copyItem with @p calls. The copy is made in a folder beside @p to, a
/// TemporaryEntry, and moved to @p to when it is complete. If the folder of @p to cannot be flushed
/// after that, the failure is logged and the item counts as copied.
bool copyItem(const std::string& from, const std::string& to, SystemCalls& calls);

/// Implements FileManager::replaceItem with @p calls. The copy is made as in copyItem and exchanged
/// with the old item, which is then removed.
Replacement replaceItem(const std::string& from, const std::string& to, SystemCalls& calls);

} // namespace platform::posix
