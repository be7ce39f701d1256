#pragma once

#include "platform/posix/SystemCalls.h"

#include <string>

namespace platform::posix {

/// What FileManager::copyItem promises, by way of @p calls. When the copy is in place but its
/// folder cannot be flushed, that is logged.
///
/// Until it is whole the copy lies in a folder beside its final place that is called
/// ".halvex-copy-<hash of the final name>-<random>" and locked by its maker; what carries such a
/// name for the same place and is not locked was left by a maker that is gone.
bool copyItem(const std::string& from, const std::string& to, SystemCalls& calls);

} // namespace platform::posix
