#pragma once

#include "platform/values/PropertyList.h"

#include <optional>
#include <string>

namespace apps {

// Paths come from the command line: absolute, or relative to the current folder.

/// Returns whether two paths refer to the same file or folder. Neither needs to exist.
bool isSameFile(const std::string& first, const std::string& second);

/// Reads a property list. On failure, prints the reason and returns std::nullopt.
std::optional<platform::PropertyList> readPropertyList(const std::string& path);

/// Like readPropertyList(), but also fails if the root is not an array.
std::optional<platform::PropertyList::Array> readArray(const std::string& path);

} // namespace apps
