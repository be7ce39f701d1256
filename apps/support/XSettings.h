#pragma once

#include <QByteArrayView>

#include <optional>
#include <string>
#include <string_view>

namespace apps {

/// Returns a string from a block of XSETTINGS, the property _XSETTINGS_SETTINGS of the settings
/// manager's window. Returns std::nullopt if the block does not contain it or is damaged before it.
std::optional<std::string> stringInXSettings(QByteArrayView block, std::string_view name);

/// A font as settings managers describe it: "Noto Sans Medium 10.5".
struct FontDescription {
    std::string family;
    double points = 0;
};

/// Separates the size from the family. Style words at the end of the family are removed, because
/// the interface is drawn in the regular style. Returns std::nullopt if there is no family or no
/// size from 1 to 100 points.
std::optional<FontDescription> parseFontDescription(std::string_view text);

} // namespace apps
