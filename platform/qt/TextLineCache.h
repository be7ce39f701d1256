#pragma once

#include "platform/qt/Fonts.h"
#include "platform/qt/TextLine.h"

#include <array>
#include <cstddef>
#include <memory>

namespace platform::qt {

/// Lays out text and caches the last lines, because shaping takes most of the time and text is
/// drawn after it has been measured. Items may change together and are drawn only after all of them
/// have changed, so there is room for the titles of a full bar. Main thread.
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
    std::array<Entry, 16> entries_;
    std::size_t next_ = 0; // the entry to replace, which is the oldest
};

} // namespace platform::qt
