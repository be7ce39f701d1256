#pragma once

#include <string>

namespace apps {

/// Returns the folder of the bar's own items, which is found relative to the running program.
std::string ownItemsFolder();

} // namespace apps
