#include "platform/Log.h"

#include "platform/Defaults.h"
#include "platform/base/ServiceSlot.h"

#include <array>
#include <cctype>
#include <charconv>

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
                placeholder.conversion == 'x' ? argument->hexadecimal() : argument->text();
            if (value.size() < placeholder.width)
                line.append(placeholder.width - value.size(), placeholder.fill);
            line += value;
            ++argument;
        }
        format.remove_prefix(placeholder.length);
    }
    return line;
}

} // namespace platform
