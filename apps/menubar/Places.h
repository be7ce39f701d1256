#pragma once

#include <string>

namespace apps {

/// The folder of the bar's own items, found from where this program is.
std::string ownItemsFolder();

} // namespace apps
