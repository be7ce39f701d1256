#pragma once

#include <QColor>

#include <optional>
#include <string_view>

namespace apps {

/// The colours of a program.
enum class Appearance { Desktop, Light, Dark };

/// What the user prefers in addition to an appearance.
struct AppearanceDetails {
    std::optional<QColor> accent; ///< of highlights; by default, that of the palette
    bool highContrast = false;
};

/// Parses "desktop", "light" or "dark". Returns std::nullopt for any other name.
std::optional<Appearance> parseAppearance(std::string_view name);

/// Sets the palettes of the application and of its tooltips. Appearance::Desktop uses the palette
/// of Qt's platform theme, or the light one if the theme has none. Needs a QApplication.
void applyAppearance(Appearance appearance, const AppearanceDetails& details = {});

/// Returns black or white, whichever is more pleasant to read on @p background: white, unless its
/// contrast is less than 3 to 1.
QColor textColorOn(const QColor& background);

} // namespace apps
