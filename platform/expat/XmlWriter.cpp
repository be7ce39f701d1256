#include "platform/expat/XmlWriter.h"

#include "platform/expat/Scalars.h"

#include <array>
#include <cstring>

namespace platform::expat {
namespace {

constexpr std::string_view kHead = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
                                   "<plist version=\"1.0\">\n";
constexpr std::string_view kTail = "</plist>\n";

enum class ByteClass : std::uint8_t { Plain, Escaped, Multibyte, Refused };

/// A carriage return would be read as a line feed, "]]>" is no text, so both are escaped.
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

/// The length of the well-formed UTF-8 sequence at the start of @p text, when XML takes its
/// character; else 0.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [text](std::size_t i) -> std::uint32_t {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const std::uint32_t first = byte(0);
    const std::size_t length = first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    if (length == 0 || first > 0xF4)
        return 0;
    std::uint32_t character = first & (0xFFU >> (length + 1));
    for (std::size_t i = 1; i < length; ++i) {
        if ((byte(i) & 0xC0U) != 0x80U)
            return 0;
        character = character << 6 | (byte(i) & 0x3FU);
    }
    constexpr std::array<std::uint32_t, 5> kLeast{0, 0, 0x80, 0x800, 0x1'0000};
    const bool surrogate = character >= 0xD800 && character <= 0xDFFF;
    const bool noCharacter = character == 0xFFFE || character == 0xFFFF || character > 0x10'FFFF;
    return character < kLeast[length] || surrogate || noCharacter ? 0 : length;
}

class Writer {
  public:
    bool value(const PropertyList& value, int depth);
    bool array(const PropertyList::Array& array, int depth);
    std::string finish();

  private:
    bool dictionary(const PropertyList::Dictionary& dictionary, int depth);
    bool escapedText(std::string_view text);
    void indent(int depth) { out_.append(static_cast<std::size_t>(depth - 1), '\t'); }

    std::string out_{kHead};
};

bool Writer::escapedText(std::string_view text) {
    std::size_t written = 0;
    for (std::size_t i = 0; i < text.size();) {
        switch (kByteClasses[static_cast<unsigned char>(text[i])]) {
        case ByteClass::Plain:
            ++i;
            break;
        case ByteClass::Escaped:
            out_.append(text.substr(written, i - written)).append(escaped(text[i]));
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

bool Writer::value(const PropertyList& value, int depth) {
    using Type = PropertyList::Type;
    if (depth > PropertyListService::kMaximumDepth)
        return false;
    switch (value.type()) {
    case Type::Array:
        return array(*value.array(), depth);
    case Type::Dictionary:
        return dictionary(*value.dictionary(), depth);
    default:
        indent(depth);
    }
    bool written = true;
    switch (value.type()) {
    case Type::Integer:
        out_ += "<integer>";
        out_ += value.integer() ? std::to_string(*value.integer())
                                : std::to_string(*value.unsignedInteger());
        out_ += "</integer>\n";
        break;
    case Type::Real:
        out_ += "<real>";
        appendReal(out_, *value.real());
        out_ += "</real>\n";
        break;
    case Type::Boolean:
        out_ += *value.boolean() ? "<true/>\n" : "<false/>\n";
        break;
    case Type::Date:
        out_ += "<date>";
        written = appendDate(out_, *value.date());
        out_ += "</date>\n";
        break;
    case Type::Data: {
        const std::string margin(static_cast<std::size_t>(depth - 1), '\t');
        out_ += "<data>\n";
        appendData(out_, *value.data(), margin);
        out_.append(margin).append("</data>\n");
        break;
    }
    default:
        out_ += "<string>";
        written = escapedText(*value.string());
        out_ += "</string>\n";
        break;
    }
    return written;
}

bool Writer::array(const PropertyList::Array& array, int depth) {
    indent(depth);
    out_ += "<array>\n";
    for (const PropertyList& element : array)
        if (!value(element, depth + 1))
            return false;
    indent(depth);
    out_ += "</array>\n";
    return true;
}

bool Writer::dictionary(const PropertyList::Dictionary& dictionary, int depth) {
    indent(depth);
    out_ += "<dict>\n";
    for (const auto& [key, element] : dictionary) {
        indent(depth + 1);
        out_ += "<key>";
        if (!escapedText(key))
            return false;
        out_ += "</key>\n";
        if (!value(element, depth + 1))
            return false;
    }
    indent(depth);
    out_ += "</dict>\n";
    return true;
}

std::string Writer::finish() {
    return std::move(out_.append(kTail));
}

} // namespace

std::optional<std::string> writeXml(const PropertyList& value) {
    Writer writer;
    if (!writer.value(value, 1))
        return std::nullopt;
    return writer.finish();
}

std::optional<std::string> writeXml(const PropertyList::Array& array) {
    Writer writer;
    if (!writer.array(array, 1))
        return std::nullopt;
    return writer.finish();
}

} // namespace platform::expat
