#pragma once

#include <string>
#include <vector>

namespace paths {

/// Returns the folders that contain themes, in the order in which a theme is searched: the user's
/// themes folder, the local one, and that of the preference pane, if there is a pane. Creates none.
std::vector<std::string> themeFolders();

} // namespace paths
