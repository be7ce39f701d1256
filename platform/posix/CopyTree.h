#pragma once

#include "platform/posix/SystemCalls.h"

#include <string>

namespace platform::posix {

/// Implements FileManager::copyItem with @p calls. The copy is made in a folder beside @p to, a
/// TemporaryEntry with the purpose "copy", and moved to @p to when it is complete. If the folder of
/// @p to cannot be flushed after that, the failure is logged and the item counts as copied.
bool copyItem(const std::string& from, const std::string& to, SystemCalls& calls);

} // namespace platform::posix
