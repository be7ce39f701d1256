#include "platform/Log.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"
#include "platform/base/Utf8.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <charconv>
#include <new>
#include <span>

namespace platform {
namespace {

constinit ServiceSlot<Log> slot{"Log", defaults::log};

struct Placeholder {
    char conversion = 0; // '@', 'd', 'x' or '%'; 0 if this is not a placeholder
    char fill = ' ';
    std::size_t width = 0;
    std::size_t length = 0; // of the placeholder itself, including the "%"
};

Placeholder parsePlaceholder(std::string_view text) {
    Placeholder result;
    std::size_t i = 1;
    if (i < text.size() && text[i] == '0') {
        result.fill = '0';
        ++i;
    }
    while (i < text.size() && std::isdigit(static_cast<unsigned char>(text[i])) && i < 4)
        result.width = result.width * 10 + static_cast<std::size_t>(text[i++] - '0');
    if (i < text.size() && std::string_view("@dx%").find(text[i]) != std::string_view::npos) {
        result.conversion = text[i];
        result.length = i + 1;
    }
    return result;
}

std::string convert(std::uint64_t number, int base) {
    std::array<char, 24> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, base).ptr;
    return {digits.data(), end};
}

constexpr std::size_t kMaximumArgument = 1024; // bytes

/// @p character is one well-formed UTF-8 sequence.
bool isControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character.front());
    const auto last = static_cast<unsigned char>(character.back());
    return first < 0x20 || first == 0x7f || (first == 0xc2 && last < 0xa0);
}

void appendEscaped(std::string& text, std::string_view bytes) {
    constexpr std::string_view kNamed = "\n\r\t";
    for (const char byte : bytes) {
        text += '\\';
        if (const auto named = kNamed.find(byte); named != std::string_view::npos) {
            text += "nrt"[named];
            continue;
        }
        const std::string digits = convert(static_cast<unsigned char>(byte), 16);
        text += (digits.size() < 2 ? "x0" : "x") + digits;
    }
}

std::string singleLine(std::string_view text) {
    std::string result;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t length = utf8SequenceLength(text.substr(at));
        const auto character = text.substr(at, std::max<std::size_t>(length, 1));
        at += character.size();
        if (at > kMaximumArgument)
            return result + "...";
        if (length == 0 || isControl(character))
            appendEscaped(result, character);
        else
            result += character;
    }
    return result;
}

std::string unchanged(std::string_view text) {
    return std::string(text);
}

/// Fills the placeholders of @p format with what @p present returns for each argument.
std::string fill(std::string_view format, std::span<const LogArgument> arguments,
                 std::string (*present)(std::string_view)) {
    std::string line;
    auto argument = arguments.begin();
    while (!format.empty()) {
        const auto literal = format.substr(0, format.find('%'));
        line += literal;
        format.remove_prefix(literal.size());
        if (format.empty())
            break;
        const Placeholder placeholder = parsePlaceholder(format);
        const bool missing = placeholder.conversion == 0 ||
                             (placeholder.conversion != '%' && argument == arguments.end());
        if (missing) {
            line += '%';
            format.remove_prefix(1);
            continue;
        }
        if (placeholder.conversion == '%') {
            line += '%';
        } else {
            const std::string value =
                present(placeholder.conversion == 'x' ? argument->hexadecimal() : argument->text());
            if (value.size() < placeholder.width)
                line.append(placeholder.width - value.size(), placeholder.fill);
            line += value;
            ++argument;
        }
        format.remove_prefix(placeholder.length);
    }
    return line;
}

} // namespace

Log::~Log() = default;

Log& systemLog() {
    return slot.get();
}

template <>
Log* exchangeService<Log>(Log* service) {
    return slot.exchange(service);
}

std::string LogArgument::text() const {
    if (const auto* string = std::get_if<std::string_view>(&value_))
        return std::string(*string);
    if (const auto* number = std::get_if<std::int64_t>(&value_))
        return std::to_string(*number);
    if (const auto* number = std::get_if<std::uint64_t>(&value_))
        return std::to_string(*number);
    return "(null)";
}

std::string LogArgument::hexadecimal() const {
    if (const auto* number = std::get_if<std::int64_t>(&value_))
        return convert(static_cast<std::uint32_t>(*number), 16);
    if (const auto* number = std::get_if<std::uint64_t>(&value_))
        return convert(*number, 16);
    return text();
}

std::string formatLogLine(std::string_view format, std::initializer_list<LogArgument> arguments) {
    return fill(format, arguments, unchanged);
}

void writeLogLine(std::string_view format, std::initializer_list<LogArgument> arguments) {
    try {
        systemLog().write(fill(format, arguments, singleLine));
    } catch (const std::bad_alloc&) {
        systemLog().write(format);
    }
}

} // namespace platform
