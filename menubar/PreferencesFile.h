#pragma once

#include <string>

/// The path of the property list that holds the product's preferences, in the user's home folder.
/// Nothing is created.
std::string HalvexPreferencesFile();
