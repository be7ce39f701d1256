#pragma once

#include <string>

namespace menubar {

/// Returns the path of the product's preferences, a property list in the user's home folder. The
/// file may not exist. If memory runs out, logs this and returns an empty path.
std::string preferencesFile();

} // namespace menubar
