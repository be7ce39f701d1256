#pragma once

#include "platform/ScriptRunner.h"

namespace platform::posix {

/// Opens a preference pane by starting the preferences program. Rejects all scripts but this one:
///
///     tell application "System Preferences"
///     activate
///     set the current pane to pane id "IDENTIFIER"
///     end tell
class PosixScriptRunner final : public ScriptRunner {
  public:
    std::optional<std::string> run(const std::string& script) override;
};

} // namespace platform::posix
