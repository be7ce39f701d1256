#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>

namespace apps {

/// Whether two paths of the command line lead to the same file or folder, there or not.
bool samePlace(const std::string& first, const std::string& second);

/// The property list in a file. Without one the fault is printed. @p path is absolute or not.
std::optional<platform::PropertyList> readPropertyList(const std::string& path);

/// The same of a file whose root must be an array.
std::optional<platform::PropertyList::Array> readList(const std::string& path);

} // namespace apps
