#pragma once

#include "platform/posix/SystemCalls.h"

#include <string>
#include <string_view>

namespace platform::posix {

/// Implements FileManager::writeFileAtomically with @p calls. The new file is a TemporaryEntry
/// until it replaces the old one. If its folder cannot be flushed after that, the failure is logged
/// and the file counts as written.
bool writeFileAtomically(const std::string& path, std::string_view bytes, SystemCalls& calls);

} // namespace platform::posix
