#pragma once

#include <string>

class QWidget;

namespace apps {

/// Draws @p bar, with @p openMenu unless that is null, into a PNG file at the absolute path @p
/// path. Replaces an existing file. Returns false, and logs, if the file cannot be written.
bool writeSnapshot(QWidget& bar, QWidget* openMenu, const std::string& path);

} // namespace apps
