#pragma once

#include <string>
#include <vector>

namespace platform::posix {

/// Starts a program, which is looked for in PATH unless it has a slash, without a shell, with this
/// process's environment. It gets a session of its own, outlives this process and is never its
/// child, so that nobody here has to wait for its end. Of the open files it gets standard error
/// alone, to log to; input and output are empty. Gives 0 once the program runs, else the error
/// number. Any thread.
int startProgram(const std::string& program, const std::vector<std::string>& arguments = {});

} // namespace platform::posix
