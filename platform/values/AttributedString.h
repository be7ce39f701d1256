#pragma once

#include "platform/values/TextAttributes.h"

#include <cstddef>
#include <string>
#include <vector>

namespace platform {

/// UTF-8 text with attributes for ranges of bytes. A regular value.
class AttributedString {
  public:
    struct Run {
        std::size_t location = 0;
        std::size_t length = 0;
        TextAttributes attributes;
        friend bool operator==(const Run&, const Run&) = default;
    };

    explicit AttributedString(std::string text = {}, TextAttributes attributes = {});

    const std::string& string() const { return text_; }
    std::size_t length() const { return text_.size(); }

    /// Returns the attributes of the byte at @p location. @throws Exception (NSRangeException) if
    /// it is out of range.
    const TextAttributes& attributesAt(std::size_t location) const;
    /// Sets the shadow of a range. @throws Exception (NSRangeException) if it is out of range.
    void addShadow(const Shadow& shadow, std::size_t location, std::size_t length);
    /// Replaces the attributes of a range. @throws Exception (NSRangeException) if out of range.
    void setAttributes(const TextAttributes& attributes, std::size_t location, std::size_t length);

    /// The runs that cover the text from start to end; an empty text has none.
    const std::vector<Run>& runs() const { return runs_; }

    friend bool operator==(const AttributedString&, const AttributedString&) = default;

  private:
    /// Splits the runs at both ends of a range. Returns the index of the first run in the range.
    std::size_t splitAt(std::size_t location, std::size_t length);

    std::string text_;
    std::vector<Run> runs_;
};

} // namespace platform
