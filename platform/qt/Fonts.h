#pragma once

#include "platform/Graphics.h"

#include <QFont>

#include <set>
#include <string>

namespace platform::qt {

/// Whether text may be drawn with colour fringes.
enum class FontSmoothing { Greyscale, Subpixel };

/// Finds the font that a description means. Main thread.
class Fonts {
  public:
    /// @p description on the ground of @p fallback, which gives whatever is left open. Sizes are
    /// points, one pixel each before the context's scale, rounded to a whole one from 1 to 1024.
    /// A family that is not there is logged once, "font %@ is missing, drawing with %@"; that there
    /// is no font at all, too.
    QFont font(const Font& description, const QFont& fallback, FontSmoothing smoothing);

  private:
    void check(const QFont& font, const std::string& family);

    std::set<std::string> checkedFamilies_;
    bool missesAllFonts_ = false;
};

} // namespace platform::qt
