#pragma once

#include "platform/values/PropertyList.h"
#include "ui/Theme.h"

#include <memory>
#include <string>
#include <string_view>

namespace ui {

/// Reads themes. docs/themes.md describes the format.
class ThemeFile {
  public:
    /// The name of a theme's property list in its folder.
    static constexpr const char* kName = "Theme.plist";
    /// The default look, which is never null.
    static std::shared_ptr<const Theme> defaultLook();
    /// Returns whether @p name can be the name of a theme or of an icon: a name of at most 200
    /// bytes that does not start with a dot and contains no slash and no control characters.
    static bool isName(std::string_view name);
    /// Reads the theme in @p folder. Returns null and sets @p reason if it cannot be used.
    static std::shared_ptr<const Theme> read(const std::string& folder, std::string& reason);
};

} // namespace ui
