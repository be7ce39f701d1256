#pragma once

#include <string>

namespace platform::posix {

/// Why the system's loader would not load the shared object at @p path, in its own words; empty
/// when it would. The loader is asked in a process of its own, where it maps the file and what the
/// file needs and binds every symbol, but runs nothing of them. Libraries are looked for where this
/// process's loader does, and where this library itself lies.
std::string askLoader(const std::string& path);

} // namespace platform::posix
