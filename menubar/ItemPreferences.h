#pragma once

#include "platform/Bundle.h"
#include "platform/Preferences.h"

#include <memory>
#include <string>

namespace menubar {

/// Returns the preferences of a menu extra: "~/Library/Preferences/IDENTIFIER.plist". The product's
/// own items share the file of productPreferencesFile(), and each has a prefix for its keys. If
/// @p bundle is null or has no identifier that is a file name, logs this and returns preferences
/// that contain nothing and cannot be written. Main thread only.
platform::Preferences preferencesOf(const std::shared_ptr<platform::Bundle>& bundle);

/// Returns the path of the product's preferences. The file may not exist. If memory runs out, logs
/// this and returns an empty path.
std::string productPreferencesFile();

} // namespace menubar
