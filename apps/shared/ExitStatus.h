#pragma once

namespace apps {

/// The exit status of the command-line programs.
enum class ExitStatus { Success = 0, Failure = 1, UsageError = 2 };

} // namespace apps
