#pragma once

#include "platform/Graphics.h"

#include <QFont>

#include <set>
#include <string>

namespace platform::qt {

/// Greyscale or subpixel antialiasing of text.
enum class FontSmoothing { Greyscale, Subpixel };

/// Creates fonts from their descriptions. Main thread.
class Fonts {
  public:
    /// Returns the font for @p description, with unspecified properties taken from @p fallback.
    /// Sizes are in points and rounded to an integer from 1 to 1024; a point is 1 pixel before the
    /// context's scale is applied. Logs once per family "font %@ not found: using %@", and once
    /// "text is drawn as boxes: no font is installed".
    QFont font(const Font& description, const QFont& fallback, FontSmoothing smoothing);

  private:
    void logMissing(const QFont& font, const std::string& family);

    std::set<std::string> checkedFamilies_;
    bool hasLoggedNoFonts_ = false;
};

} // namespace platform::qt
