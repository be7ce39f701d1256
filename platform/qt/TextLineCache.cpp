#include "platform/qt/TextLineCache.h"

#include <algorithm>

namespace platform::qt {

std::shared_ptr<const TextLine> TextLineCache::line(const AttributedString& text,
                                                    const QFont& defaultFont,
                                                    FontSmoothing smoothing) {
    const auto cached = std::find_if(entries_.begin(), entries_.end(), [&](const Entry& entry) {
        return entry.line && entry.text == text && entry.smoothing == smoothing &&
               entry.defaultFont == defaultFont;
    });
    if (cached != entries_.end())
        return cached->line;
    Entry& entry = entries_[next_];
    next_ = (next_ + 1) % entries_.size();
    entry = {text, defaultFont, smoothing,
             std::make_shared<const TextLine>(text, fonts_, defaultFont, smoothing)};
    return entry.line;
}

} // namespace platform::qt
