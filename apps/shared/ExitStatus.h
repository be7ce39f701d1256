#pragma once

namespace apps {

/// The exit status of the command-line programs.
enum class ExitStatus { Done = 0, Refused = 1, WrongUsage = 2 };

} // namespace apps
