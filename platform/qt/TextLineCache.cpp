#include "platform/qt/TextLineCache.h"

namespace platform::qt {

std::shared_ptr<const TextLine> TextLineCache::line(const AttributedString& text,
                                                    const QFont& defaultFont,
                                                    FontSmoothing smoothing) {
    const auto matches = [&](const Entry& entry) {
        return entry.line && entry.smoothing == smoothing && entry.text == text &&
               entry.defaultFont == defaultFont;
    };
    // The newest first: most text is looked up again soon.
    for (std::size_t age = 1; age <= entries_.size(); ++age) {
        const Entry& entry = entries_[(next_ + entries_.size() - age) % entries_.size()];
        if (matches(entry))
            return entry.line;
    }
    Entry& entry = entries_[next_];
    next_ = (next_ + 1) % entries_.size();
    entry = {text, defaultFont, smoothing,
             std::make_shared<const TextLine>(text, fonts_, defaultFont, smoothing)};
    return entry.line;
}

} // namespace platform::qt
