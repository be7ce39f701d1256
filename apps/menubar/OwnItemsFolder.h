#pragma once

#include <string>

namespace apps {

/// Returns the folder of the bar's own items, based on the path of the running program, with
/// symbolic links resolved.
std::string ownItemsFolder();

} // namespace apps
