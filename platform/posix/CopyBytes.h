#pragma once

#include "platform/posix/SystemCalls.h"

#include <string_view>

namespace platform::posix {

/// Writes all of @p bytes, in as many calls as it takes. False when one fails.
bool writeAll(int file, std::string_view bytes, SystemCalls& calls);

/// Writes what is left to read of @p source to @p target. False when reading or writing fails.
bool copyBytes(int source, int target, SystemCalls& calls);

} // namespace platform::posix
