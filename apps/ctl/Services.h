#pragma once

#include "apps/ctl/Verbs.h"
#include "platform/ProcessList.h"
#include "platform/base/NonCopyable.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace apps {

/// Installs the services that the verbs use. Connects to the session bus only when a verb needs it.
class Services : platform::NonCopyable {
  public:
    /// Prepends @p root to /Library and all paths below it; an empty @p root leaves them unchanged.
    Services(const std::string& root, MissingFolders missingFolders);
    /// Waits until posted notifications have been sent, then removes the services.
    ~Services();

  private:
    struct Installed;
    std::unique_ptr<Installed> installed_;
};

/// Starts the program at @p path. It outlives this process and inherits its standard error. Returns
/// 0 or the error number.
int startProgram(const std::string& path);

/// Returns the process identifier of a running process, or std::nullopt once it has exited.
std::optional<std::int32_t> processIdentifier(platform::ProcessSerialNumber process);

} // namespace apps
