#pragma once

#include "platform/Bundle.h"

#include <memory>
#include <string>

namespace paths {

/// The product's preference pane, in the places where it may be. Null when it is not there. Nothing
/// is logged.

/// The one whose code this process has loaded.
std::shared_ptr<platform::Bundle> loadedPreferencePane();

/// The one at a path, whose leading tilde is the user's home folder.
std::shared_ptr<platform::Bundle> preferencePaneAt(const std::string& place);

/// The one that is installed for all users, else the one that is installed for this user.
std::shared_ptr<platform::Bundle> installedPreferencePane();

} // namespace paths
