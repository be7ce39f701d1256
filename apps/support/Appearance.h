#pragma once

#include <optional>
#include <string_view>

namespace apps {

/// The colours of a program.
enum class Appearance { Desktop, Light, Dark };

/// Parses "desktop", "light" or "dark". Returns std::nullopt for any other name.
std::optional<Appearance> parseAppearance(std::string_view name);

/// Sets the application's palette. Needs a QApplication.
void applyAppearance(Appearance appearance);

} // namespace apps
