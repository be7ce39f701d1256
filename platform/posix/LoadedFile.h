#pragma once

#include <string>

namespace platform::posix {

/// Returns the file that the code or data at @p address was loaded from, or an empty string. For
/// the program itself this is its name on the command line, which need not be a path.
std::string loadedFileAt(const void* address);

} // namespace platform::posix
