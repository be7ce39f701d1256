#pragma once

#include <string>

class QWidget;

namespace apps {

/// Draws @p bar and, unless null, @p openMenu and its open submenus into a PNG file at the absolute
/// path @p path. Replaces an existing file. Returns false, and logs, if the file cannot be written.
bool writeSnapshot(QWidget& bar, QWidget* openMenu, const std::string& path);

} // namespace apps
