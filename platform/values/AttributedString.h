#pragma once

#include "platform/values/TextAttributes.h"

#include <cstddef>
#include <string>
#include <vector>

namespace platform {

/// Text with attributes by range. A regular value; ranges are bytes of the UTF-8 text.
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

    /// What the byte at @p location has. @throws Exception (NSRangeException) beyond the text's
    /// end.
    const TextAttributes& attributesAt(std::size_t location) const;
    /// Sets the shadow of a range. @throws Exception (NSRangeException) beyond the text's end.
    void addShadow(const Shadow& shadow, std::size_t location, std::size_t length);
    /// Sets all attributes of a range. @throws Exception (NSRangeException) beyond the text's end.
    void setAttributes(const TextAttributes& attributes, std::size_t location, std::size_t length);

    /// The runs that cover the text from start to end; an empty text has none.
    const std::vector<Run>& runs() const { return runs_; }

    friend bool operator==(const AttributedString&, const AttributedString&) = default;

  private:
    /// Makes run boundaries at both ends of the range; gives the index of its first run.
    std::size_t splitAt(std::size_t location, std::size_t length);

    std::string text_;
    std::vector<Run> runs_;
};

} // namespace platform
