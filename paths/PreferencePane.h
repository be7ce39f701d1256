#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

namespace paths {

// The product's preference pane. The functions return null if there is no such pane,
// and log nothing.

/// Returns the pane whose code this process has loaded.
std::shared_ptr<platform::Bundle> loadedPreferencePane();

/// Returns the pane at @p path, in which a leading tilde stands for the user's home folder.
std::shared_ptr<platform::Bundle> preferencePaneAt(const std::string& path);

/// Returns the pane installed for all users, else the one installed for this user.
std::shared_ptr<platform::Bundle> installedPreferencePane();

} // namespace paths
