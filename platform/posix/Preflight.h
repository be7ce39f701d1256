#pragma once

#include <string>

namespace platform::posix {

/// Returns an empty string if the dynamic loader would load the shared object at @p path, or
/// else the loader's error message. Also returns an error if the loader cannot be run or
/// does not finish.
///
/// Runs the loader in another process, where it maps the file and its dependencies and binds every
/// symbol, but runs none of their code. It searches for libraries in the same folders as this
/// process's loader, and in the folder of this library. Blocks for a few milliseconds, at most 5 s.
std::string preflightError(const std::string& path);

} // namespace platform::posix
