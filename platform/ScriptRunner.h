#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <optional>
#include <string>

namespace platform {

/// Runs scripts that control applications. Thread-safe; may block for several seconds.
class ScriptRunner : NonCopyable {
  public:
    virtual ~ScriptRunner();

    /// Runs a script. Returns a user-visible error message, or std::nullopt on success.
    virtual std::optional<std::string> run(const std::string& script) = 0;
};

/// Returns the process's script runner. The default supports a single script, which activates
/// "System Preferences" and sets its current pane.
ScriptRunner& scriptRunner();
template <>
ScriptRunner* exchangeService<ScriptRunner>(ScriptRunner* service);

} // namespace platform
