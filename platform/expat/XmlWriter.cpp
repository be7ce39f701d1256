#include "platform/expat/XmlWriter.h"

#include "platform/PropertyListService.h"
#include "platform/base/LargePages.h"
#include "platform/base/Utf8.h"
#include "platform/expat/Scalars.h"

#include <array>
#include <cstring>

namespace platform::expat {
namespace {

constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<plist version=\"1.0\">\n";
constexpr std::string_view kTail = "</plist>\n";

constexpr auto kTabsForAnyDepth = [] {
    std::array<char, PropertyListService::kMaximumDepth> tabs{};
    tabs.fill('\t');
    return tabs;
}();
constexpr std::string_view kTabs(kTabsForAnyDepth.data(), kTabsForAnyDepth.size());

enum class ByteClass : std::uint8_t { Plain, Escaped, Multibyte, Refused };

/// Carriage returns are escaped because parsers convert them to line feeds, and ">" because "]]>"
/// is not allowed in text.
constexpr auto kByteClasses = [] {
    std::array<ByteClass, 256> classes{};
    for (std::size_t byte = 0; byte < 0x20; ++byte)
        classes[byte] = ByteClass::Refused;
    for (std::size_t byte = 0x80; byte < 0x100; ++byte)
        classes[byte] = ByteClass::Multibyte;
    classes['\t'] = classes['\n'] = ByteClass::Plain;
    for (const char byte : {'\r', '&', '<', '>'})
        classes[static_cast<unsigned char>(byte)] = ByteClass::Escaped;
    return classes;
}();

bool isPlain(std::string_view text) {
    unsigned classes = 0;
    for (const char character : text)
        classes |= static_cast<unsigned>(kByteClasses[static_cast<unsigned char>(character)]);
    return classes == static_cast<unsigned>(ByteClass::Plain);
}

std::string_view escaped(char character) {
    switch (character) {
    case '\r':
        return "&#13;";
    case '&':
        return "&amp;";
    case '<':
        return "&lt;";
    default:
        return "&gt;";
    }
}

/// Returns the length of the UTF-8 sequence at the start of @p text, or 0 if it is malformed or
/// encodes U+FFFE or U+FFFF, which XML does not allow.
std::size_t sequenceLength(std::string_view text) {
    const bool isNoncharacter =
        text.starts_with("\xEF\xBF\xBE") || text.starts_with("\xEF\xBF\xBF");
    return isNoncharacter ? 0 : utf8SequenceLength(text);
}

/// Collects small pieces in a block that stays in the processor's cache. Appending each piece to a
/// string takes twice as long.
class Output {
  public:
    explicit Output(std::size_t expectedSize) {
        text_.reserve(expectedSize);
        useLargePages(text_.data(), text_.capacity());
    }

    void append(std::string_view piece) {
        if (piece.size() > block_.size() - used_)
            return appendPastBlock(piece);
        std::memcpy(block_.data() + used_, piece.data(), piece.size());
        used_ += piece.size();
    }
    /// Appends an indented line, which is faster than appending its parts. Returns false, and
    /// appends nothing, if the line is indented too deeply or does not fit into the block.
    bool appendLine(std::size_t depth, std::string_view start, std::string_view text,
                    std::string_view end) {
        const std::size_t size = depth - 1 + start.size() + text.size() + end.size();
        if (depth > kQuickDepth || size + kQuickDepth > block_.size() - used_)
            return false;
        char* at = block_.data() + used_;
        std::memcpy(at, kTabs.data(), kQuickDepth);
        std::memcpy(at += depth - 1, start.data(), start.size());
        std::memcpy(at += start.size(), text.data(), text.size());
        std::memcpy(at + text.size(), end.data(), end.size());
        used_ += size;
        return true;
    }
    void indent(std::size_t depth) { append(kTabs.substr(0, depth - 1)); }
    std::string finish() {
        appendPastBlock({});
        return std::move(text_);
    }

  private:
    void appendPastBlock(std::string_view piece) {
        text_.append(block_.data(), used_).append(piece);
        used_ = 0;
    }

    /// Copying this constant number of tabs is faster than copying only as many as needed.
    static constexpr std::size_t kQuickDepth = 8;

    std::string text_;
    std::size_t used_ = 0;
    std::array<char, std::size_t{1} << 14> block_;
};

class Writer {
  public:
    explicit Writer(std::size_t expectedSize) : out_(expectedSize) { out_.append(kHead); }

    bool value(const PropertyList& value, std::size_t depth);
    bool array(const PropertyList::Array& array, std::size_t depth);
    std::string finish() {
        out_.append(kTail);
        return out_.finish();
    }

  private:
    bool notString(const PropertyList& value, std::size_t depth);
    bool dictionary(const PropertyList::Dictionary& dictionary, std::size_t depth);
    bool string(std::string_view text, std::size_t depth);
    bool integer(const PropertyList& value, std::size_t depth);
    bool date(PropertyList::Date date, std::size_t depth);
    bool data(const PropertyList::Data& data, std::size_t depth);
    bool element(std::string_view start, std::string_view text, std::string_view end,
                 std::size_t depth);
    bool escapedText(std::string_view text);

    Output out_;
};

bool Writer::escapedText(std::string_view text) {
    if (isPlain(text)) {
        out_.append(text);
        return true;
    }
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size();) {
        switch (kByteClasses[static_cast<unsigned char>(text[i])]) {
        case ByteClass::Plain:
            ++i;
            break;
        case ByteClass::Escaped:
            out_.append(text.substr(written, i - written));
            out_.append(escaped(text[i]));
            written = ++i;
            break;
        case ByteClass::Multibyte: {
            const std::size_t length = sequenceLength(text.substr(i));
            if (length == 0)
                return false;
            i += length;
            break;
        }
        case ByteClass::Refused:
            return false;
        }
    }
    out_.append(text.substr(written));
    return true;
}

bool Writer::element(std::string_view start, std::string_view text, std::string_view end,
                     std::size_t depth) {
    out_.indent(depth);
    out_.append(start);
    out_.append(text);
    out_.append(end);
    return true;
}

bool Writer::value(const PropertyList& value, std::size_t depth) {
    if (depth > PropertyListService::kMaximumDepth)
        return false;
    if (const auto text = value.string())
        return string(*text, depth);
    return notString(value, depth);
}

bool Writer::notString(const PropertyList& value, std::size_t depth) {
    using Type = PropertyList::Type;
    switch (value.type()) {
    case Type::Integer:
        return integer(value, depth);
    case Type::Real:
        return element("<real>", realText(*value.real()), "</real>\n", depth);
    case Type::Boolean:
        return element(*value.boolean() ? "<true/>" : "<false/>", "", "\n", depth);
    case Type::Date:
        return date(*value.date(), depth);
    case Type::Data:
        return data(*value.data(), depth);
    case Type::Array:
        return array(*value.array(), depth);
    case Type::Dictionary:
        return dictionary(*value.dictionary(), depth);
    case Type::String:
        break;
    }
    return false;
}

bool Writer::string(std::string_view text, std::size_t depth) {
    if (isPlain(text) && out_.appendLine(depth, "<string>", text, "</string>\n"))
        return true;
    out_.indent(depth);
    out_.append("<string>");
    const bool written = escapedText(text);
    out_.append("</string>\n");
    return written;
}

bool Writer::integer(const PropertyList& value, std::size_t depth) {
    const auto number = value.integer();
    return element("<integer>",
                   number ? std::to_string(*number) : std::to_string(*value.unsignedInteger()),
                   "</integer>\n", depth);
}

bool Writer::date(PropertyList::Date date, std::size_t depth) {
    const auto text = dateText(date);
    return text && element("<date>", *text, "</date>\n", depth);
}

bool Writer::data(const PropertyList::Data& data, std::size_t depth) {
    const auto margin = kTabs.substr(0, depth - 1);
    element("<data>\n", dataText(data, margin), margin, depth);
    out_.append("</data>\n");
    return true;
}

bool Writer::array(const PropertyList::Array& array, std::size_t depth) {
    out_.indent(depth);
    out_.append("<array>\n");
    for (const PropertyList& element : array)
        if (!value(element, depth + 1))
            return false;
    out_.indent(depth);
    out_.append("</array>\n");
    return true;
}

bool Writer::dictionary(const PropertyList::Dictionary& dictionary, std::size_t depth) {
    out_.indent(depth);
    out_.append("<dict>\n");
    for (const auto& [key, element] : dictionary) {
        out_.indent(depth + 1);
        out_.append("<key>");
        if (!escapedText(key))
            return false;
        out_.append("</key>\n");
        if (!value(element, depth + 1))
            return false;
    }
    out_.indent(depth);
    out_.append("</dict>\n");
    return true;
}

// Estimates of the output's size, assuming that few characters need escaping.

constexpr std::size_t kTagBytes = std::string_view("<string></string>\n").size();

std::size_t expectedSize(const PropertyList::Array& array, std::size_t depth);
std::size_t expectedSize(const PropertyList::Dictionary& dictionary, std::size_t depth);

std::size_t expectedSize(const PropertyList& value, std::size_t depth) {
    const std::size_t size = depth + kTagBytes;
    if (const auto text = value.string())
        return size + text->size();
    if (depth > PropertyListService::kMaximumDepth)
        return 0;
    if (const PropertyList::Array* array = value.array())
        return size + expectedSize(*array, depth);
    if (const PropertyList::Dictionary* dictionary = value.dictionary())
        return size + expectedSize(*dictionary, depth);
    if (const PropertyList::Data* data = value.data())
        return 2 * size + data->bytes.size() / 2 * 3;
    return size;
}

std::size_t expectedSize(const PropertyList::Array& array, std::size_t depth) {
    std::size_t size = (array.size() + 1) * (depth + 1 + kTagBytes);
    for (const PropertyList& element : array) {
        const auto text = element.string();
        size += text ? text->size() : expectedSize(element, depth + 1);
    }
    return size;
}

std::size_t expectedSize(const PropertyList::Dictionary& dictionary, std::size_t depth) {
    std::size_t size = depth + kTagBytes;
    for (const auto& [key, element] : dictionary)
        size += depth + kTagBytes + key.size() + expectedSize(element, depth + 1);
    return size;
}

} // namespace

std::optional<std::string> writeXml(const PropertyList& value) {
    Writer writer(expectedSize(value, 1) + kHead.size() + kTail.size());
    if (!writer.value(value, 1))
        return std::nullopt;
    return writer.finish();
}

std::optional<std::string> writeXml(const PropertyList::Array& array) {
    Writer writer(expectedSize(array, 1) + kHead.size() + kTail.size());
    if (!writer.array(array, 1))
        return std::nullopt;
    return writer.finish();
}

} // namespace platform::expat
