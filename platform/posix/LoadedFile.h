#pragma once

#include <string>

namespace platform::posix {

/// Returns the file that the code or data at @p address was loaded from, as the loader names it:
/// for the program itself that is its name on the command line. Empty if there is none.
std::string loadedFileAt(const void* address);

} // namespace platform::posix
