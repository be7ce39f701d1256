#pragma once

#include <string>

namespace menubar {

/// Returns the path of the product's preferences, a property list in the user's home folder. The
/// file may not exist.
std::string preferencesFile();

} // namespace menubar
