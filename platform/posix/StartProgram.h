#pragma once

#include <string>
#include <vector>

namespace platform::posix {

/// Starts a program in a session of its own, without a shell. It outlives this process and is not
/// its child, so it need not be waited for. It inherits the environment and standard error;
/// standard input and output are /dev/null, signal handlers and the signal mask are reset, and all
/// other files are closed.
///
/// A @p program without a slash is searched for in PATH. Returns 0 once the program runs, or else
/// the error number. Thread-safe.
int startProgram(const std::string& program, const std::vector<std::string>& arguments = {});

} // namespace platform::posix
