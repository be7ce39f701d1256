#include "apps/shared/Json.h"

#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <ctime>
#include <string_view>

using platform::PropertyList;

namespace apps {
namespace {

/// The well-formed UTF-8 sequences of several bytes: the first byte, and the second one's range.
/// Every further byte is 80 to BF.
struct Sequences {
    unsigned char first, last;
    unsigned char leastSecond, greatestSecond;
    std::size_t length;
};
constexpr std::array<Sequences, 8> kSequences{{{0xC2, 0xDF, 0x80, 0xBF, 2},
                                               {0xE0, 0xE0, 0xA0, 0xBF, 3},
                                               {0xE1, 0xEC, 0x80, 0xBF, 3},
                                               {0xED, 0xED, 0x80, 0x9F, 3},
                                               {0xEE, 0xEF, 0x80, 0xBF, 3},
                                               {0xF0, 0xF0, 0x90, 0xBF, 4},
                                               {0xF1, 0xF3, 0x80, 0xBF, 4},
                                               {0xF4, 0xF4, 0x80, 0x8F, 4}}};

/// Of the sequence of several bytes at the start of @p text; 0 when there is none.
std::size_t sequenceLength(std::string_view text) {
    const auto byte = [text](std::size_t i) -> unsigned {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    for (const auto& [first, last, leastSecond, greatestSecond, length] : kSequences) {
        if (byte(0) < first || byte(0) > last)
            continue;
        if (byte(1) < leastSecond || byte(1) > greatestSecond)
            return 0;
        for (std::size_t i = 2; i < length; ++i)
            if ((byte(i) & 0xC0U) != 0x80U)
                return 0;
        return length;
    }
    return 0;
}

void appendEscaped(std::string& out, char character) {
    switch (character) {
    case '"':
    case '\\':
        out.append({'\\', character});
        return;
    case '\n':
        out.append("\\n");
        return;
    case '\r':
        out.append("\\r");
        return;
    case '\t':
        out.append("\\t");
        return;
    default:
        break;
    }
    constexpr std::string_view kDigits = "0123456789abcdef";
    const auto code = static_cast<unsigned char>(character);
    if (code < 0x20)
        out.append("\\u00").append({kDigits[code >> 4], kDigits[code & 15]});
    else
        out += character;
}

void appendString(std::string& out, std::string_view text) {
    out += '"';
    while (!text.empty()) {
        std::size_t length = 1;
        if (static_cast<unsigned char>(text.front()) < 0x80) {
            appendEscaped(out, text.front());
        } else if ((length = sequenceLength(text)) > 0) {
            out.append(text.substr(0, length));
        } else {
            out.append("\xEF\xBF\xBD");
            length = 1;
        }
        text.remove_prefix(length);
    }
    out += '"';
}

std::string integerText(const PropertyList& value) {
    const auto number = value.integer();
    return number ? std::to_string(*number) : std::to_string(*value.unsignedInteger());
}

std::string realText(double value) {
    if (!std::isfinite(value))
        return "null";
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), value).ptr;
    std::string text(digits.data(), end);
    return text.find_first_of(".e") == std::string::npos ? text + ".0" : text;
}

/// With its quotes; "null" for a year that the C library does not know.
std::string dateText(PropertyList::Date date) {
    const std::time_t seconds = date.seconds;
    std::tm fields{};
    if (!::gmtime_r(&seconds, &fields))
        return "null";
    const long year = 1900L + fields.tm_year;
    std::array<char, 80> text{};
    std::snprintf(text.data(), text.size(), "\"%s%04ld-%02d-%02dT%02d:%02d:%02dZ\"",
                  year < 0 ? "-" : "", std::labs(year), fields.tm_mon + 1, fields.tm_mday,
                  fields.tm_hour, fields.tm_min, fields.tm_sec);
    return text.data();
}

void appendData(std::string& out, const std::vector<std::uint8_t>& bytes) {
    constexpr std::string_view kDigits =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
    out += '"';
    for (std::size_t i = 0; i < bytes.size(); i += 3) {
        const auto byte = [&](std::size_t j) { return i + j < bytes.size() ? bytes[i + j] : 0U; };
        const unsigned bits = byte(0) << 16 | byte(1) << 8 | byte(2);
        for (std::size_t j = 0; j < 4; ++j)
            out += i + j <= bytes.size() ? kDigits[bits >> (18 - 6 * j) & 63] : '=';
    }
    out += '"';
}

void appendLineStart(std::string& out, std::size_t depth) {
    out.append(1, '\n').append(2 * depth, ' ');
}

void appendValue(std::string& out, const PropertyList& value, std::size_t depth);

void appendArray(std::string& out, const PropertyList::Array& array, std::size_t depth) {
    out += '[';
    for (const PropertyList& element : array) {
        if (&element != &array.front())
            out += ',';
        appendLineStart(out, depth + 1);
        appendValue(out, element, depth + 1);
    }
    if (!array.empty())
        appendLineStart(out, depth);
    out += ']';
}

void appendDictionary(std::string& out, const PropertyList::Dictionary& dictionary,
                      std::size_t depth) {
    out += '{';
    bool first = true;
    for (const auto& [key, element] : dictionary) {
        if (!first)
            out += ',';
        first = false;
        appendLineStart(out, depth + 1);
        appendString(out, key);
        out.append(": ");
        appendValue(out, element, depth + 1);
    }
    if (!dictionary.empty())
        appendLineStart(out, depth);
    out += '}';
}

void appendValue(std::string& out, const PropertyList& value, std::size_t depth) {
    using Type = PropertyList::Type;
    switch (value.type()) {
    case Type::String:
        appendString(out, *value.string());
        break;
    case Type::Integer:
        out.append(integerText(value));
        break;
    case Type::Real:
        out.append(realText(*value.real()));
        break;
    case Type::Boolean:
        out.append(*value.boolean() ? "true" : "false");
        break;
    case Type::Date:
        out.append(dateText(*value.date()));
        break;
    case Type::Data:
        appendData(out, value.data()->bytes);
        break;
    case Type::Array:
        appendArray(out, *value.array(), depth);
        break;
    case Type::Dictionary:
        appendDictionary(out, *value.dictionary(), depth);
        break;
    }
}

} // namespace

std::string jsonText(const PropertyList& value) {
    std::string text;
    appendValue(text, value, 0);
    return text += '\n';
}

} // namespace apps
