#include "extras/icalendar/ContentLines.h"

#include "platform/base/Utf8.h"

#include <algorithm>

namespace extras::icalendar {
namespace {

constexpr std::size_t kMaximumTextBytes = 200;

char lowercase(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + 0x20) : character;
}

bool isControl(char character) {
    return static_cast<unsigned char>(character) < 0x20 || character == 0x7F;
}

/// Returns the position of the first @p character outside of quotation marks, or the text's size.
std::size_t findUnquoted(std::string_view text, char character) {
    bool isQuoted = false;
    for (std::size_t i = 0; i < text.size(); ++i) {
        if (text[i] == '"')
            isQuoted = !isQuoted;
        if (text[i] == character && !isQuoted)
            return i;
    }
    return text.size();
}

/// Removes the first character of an escaped text and returns it, or a space for what cannot be
/// shown on one line.
std::string_view takeCharacter(std::string_view& text) {
    if (text.front() == '\\' && text.size() > 1) {
        const std::string_view escaped = text.substr(1, 1);
        if (escaped == "n" || escaped == "N" || escaped == "," || escaped == ";" ||
            escaped == "\\") {
            text.remove_prefix(2);
            return lowercase(escaped.front()) == 'n' ? " " : escaped;
        }
    }
    const std::size_t length = platform::utf8SequenceLength(text);
    const std::string_view character = text.substr(0, length);
    text.remove_prefix(std::max<std::size_t>(length, 1));
    if (length == 0)
        return "\uFFFD";
    return isControl(character.front()) ? " " : character;
}

} // namespace

std::string_view ContentLines::takeLine() {
    std::string_view line = takePart(rest_, '\n');
    ++taken_;
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

bool ContentLines::isContinued() const {
    return rest_.starts_with(' ') || rest_.starts_with('\t');
}

std::optional<std::string_view> ContentLines::next() {
    while (!rest_.empty()) {
        const std::string_view line = takeLine();
        if (line.empty())
            continue;
        number_ = taken_;
        if (!isContinued())
            return line;
        joined_ = line;
        while (isContinued())
            joined_ += takeLine().substr(1);
        return joined_;
    }
    return std::nullopt;
}

std::string_view Property::parameter(std::string_view parameterName) const {
    std::string_view rest = parameters;
    while (!rest.empty()) {
        rest.remove_prefix(1); // the semicolon
        std::string_view one = rest.substr(0, findUnquoted(rest, ';'));
        rest.remove_prefix(one.size());
        if (!isSame(takePart(one, '='), parameterName))
            continue;
        if (!one.starts_with('"'))
            return takePart(one, ',');
        one.remove_prefix(1);
        return takePart(one, '"');
    }
    return {};
}

std::optional<Property> parseProperty(std::string_view line) {
    const std::size_t nameEnd = line.find_first_of(":;");
    if (nameEnd == 0 || nameEnd == std::string_view::npos)
        return std::nullopt;
    const std::string_view rest = line.substr(nameEnd);
    const std::size_t colon = findUnquoted(rest, ':');
    if (colon == rest.size())
        return std::nullopt;
    return Property{line.substr(0, nameEnd), rest.substr(0, colon), rest.substr(colon + 1)};
}

bool isSame(std::string_view left, std::string_view right) {
    return std::ranges::equal(left, right, {}, lowercase, lowercase);
}

std::string_view takePart(std::string_view& list, char separator) {
    const std::size_t end = std::min(list.find(separator), list.size());
    const std::string_view part = list.substr(0, end);
    list.remove_prefix(std::min(end + 1, list.size()));
    return part;
}

std::string textValue(std::string_view value) {
    std::string text;
    while (!value.empty()) {
        const std::string_view character = takeCharacter(value);
        if (text.size() + character.size() > kMaximumTextBytes) {
            text += "\u2026";
            break;
        }
        if (character != " " || (!text.empty() && !text.ends_with(' ')))
            text += character;
    }
    while (text.ends_with(' '))
        text.pop_back();
    return text;
}

} // namespace extras::icalendar
