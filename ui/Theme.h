#pragma once

#include "platform/base/NonCopyable.h"
#include "platform/base/Watch.h"
#include "platform/values/Color.h"
#include "platform/values/Image.h"
#include "platform/values/PropertyList.h"
#include "platform/values/TextAttributes.h"

#include <functional>
#include <map>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// Themes: colours, a font and icons that the user chooses together, with the key "Theme" of the
/// product's preferences. docs/themes.md describes the format and the names that our items use.
namespace ui {

/// A theme, or the default look, which has no colours, font or icons of its own. Every operation
/// falls back to what the caller uses without a theme. Main thread only.
class Theme : platform::NonCopyable {
  public:
    ~Theme();

    /// Returns the name of the theme's folder. Empty for the default look.
    const std::string& name() const;

    /// Returns the colour called @p name for the current appearance, light or dark, or @p fallback
    /// if the theme does not define it.
    platform::Color color(std::string_view name, const platform::Color& fallback) const;
    /// Same, but returns std::nullopt if the theme does not define the colour.
    std::optional<platform::Color> color(std::string_view name) const;

    /// Replaces what @p font leaves open with the theme's font: the family if it is empty, and the
    /// size if it is 0. The result is bold if @p font or the theme's font is.
    platform::Font font(platform::Font font = {}) const;

    /// Returns the theme's icon called @p name, which is a file name without extension. Unless the
    /// icon is a template, it is tinted with the colour "IconTint", if the theme defines that. Each
    /// icon is loaded once. Returns null if the theme has no such icon, or if it cannot be read,
    /// which is logged.
    std::shared_ptr<platform::Image> icon(std::string_view name) const;
    /// Returns @p image, an icon of the caller, tinted with the colour "IconTint". Returns @p image
    /// unchanged if it is null or a template, or if the theme does not define the colour.
    std::shared_ptr<platform::Image> tinted(const std::shared_ptr<platform::Image>& image) const;

  private:
    friend class ThemeFile;
    using Colors = std::map<std::string, platform::Color, std::less<>>;

    Theme();

    std::string name_;
    std::string folder_;
    Colors light_;
    Colors dark_;
    platform::Font font_;
    mutable std::map<std::string, std::shared_ptr<platform::Image>, std::less<>> icons_;
};

/// Returns the theme that the user has chosen, never null. If none is chosen, or the chosen one is
/// missing or cannot be used, which is logged once, returns the default look. While there is a
/// watch of onThemeChange, the theme is read once and all items share it; otherwise each call reads
/// it. Main thread only.
std::shared_ptr<const Theme> currentTheme();

/// Calls @p handler from the main loop after the user has chosen another theme, after the property
/// list of the current one has changed, and after the appearance has changed between light and
/// dark. Call currentTheme() again then. Exceptions from @p handler are logged with the owner's
/// identifier and swallowed. Never returns null. Main thread only.
std::unique_ptr<platform::Watch> onThemeChange(std::function<void()> handler);

/// Returns the names of the themes that the user can choose, sorted: those in the user's themes
/// folder, in the local one, and in the preference pane. Does not check whether they can be used.
std::vector<std::string> themeNames();

} // namespace ui
