#pragma once

#include <string>

namespace platform::posix {

/// Returns the error with which the dynamic loader would refuse the shared object at @p path, in
/// the loader's words, or an empty string if it would load it.
///
/// Runs the loader in another process, where it maps the file and its dependencies and binds every
/// symbol, but runs none of their code. It searches for libraries where this process's loader does
/// and in the folder of this library. Blocks for a few milliseconds, at most 5 s.
std::string preflightError(const std::string& path);

} // namespace platform::posix
