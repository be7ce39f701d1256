#pragma once

#include <string>

/// The folder of the bar's own items, found from where this program is.
std::string ownItemsFolder();

/// A path as people write it, absolute and without trailing slashes.
std::string absolutePath(const std::string& path);
