#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Service.h"

#include <optional>
#include <string>

namespace platform {

/// Runs scripts that tell applications what to do. Safe from any thread; may block for seconds.
class ScriptRunner : NonCopyable {
  public:
    virtual ~ScriptRunner();

    /// Why the script could not be run, for people; nothing when it was.
    virtual std::optional<std::string> run(const std::string& script) = 0;
};

/// Until a host installs another one: one that understands a single script, which activates
/// "System Preferences" and sets its current pane.
ScriptRunner& scriptRunner();
template <>
ScriptRunner* exchangeService<ScriptRunner>(ScriptRunner* service);

} // namespace platform
