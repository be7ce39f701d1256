#pragma once

#include "platform/posix/SystemCalls.h"

#include <string>
#include <string_view>

namespace platform::posix {

/// What FileManager::writeFileAtomically promises, by way of @p calls. When the new file is in
/// place but its folder cannot be flushed, the file counts as written and that is logged.
///
/// Until it takes the old file's place the new one is called
/// ".halvex-save-<hash of the file's name>-<random>" and locked by its writer; what carries such a
/// name for the same file and is not locked was left by a writer that is gone.
bool writeFileAtomically(const std::string& path, std::string_view bytes, SystemCalls& calls);

} // namespace platform::posix
