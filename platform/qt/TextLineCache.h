#pragma once

#include "platform/qt/Fonts.h"
#include "platform/qt/TextLine.h"

#include <array>
#include <cstddef>
#include <memory>

namespace platform::qt {

/// Lays out text and caches the last few lines: most text is drawn right after it has been
/// measured, and shaping takes most of the time. Main thread.
class TextLineCache {
  public:
    std::shared_ptr<const TextLine> line(const AttributedString& text, const QFont& defaultFont,
                                         FontSmoothing smoothing);

  private:
    struct Entry {
        AttributedString text;
        QFont defaultFont;
        FontSmoothing smoothing = FontSmoothing::Greyscale;
        std::shared_ptr<const TextLine> line;
    };

    Fonts fonts_;
    std::array<Entry, 4> entries_;
    std::size_t next_ = 0;
};

} // namespace platform::qt
