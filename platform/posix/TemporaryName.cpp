#include "platform/posix/TemporaryName.h"

#include <array>
#include <charconv>
#include <cstdint>
#include <sys/random.h>

namespace platform::posix {
namespace {

std::string hexadecimal(std::uint64_t number) {
    std::array<char, 16> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), number, 16).ptr;
    return {digits.data(), end};
}

/// FNV-1a.
std::uint64_t hash(std::string_view name) {
    std::uint64_t result = 0xcbf2'9ce4'8422'2325;
    for (const char character : name)
        result = (result ^ static_cast<unsigned char>(character)) * 0x100'0000'01b3;
    return result;
}

} // namespace

std::string temporaryPrefix(std::string_view finalName) {
    return ".halvex-" + hexadecimal(hash(finalName)) + '-';
}

std::optional<std::string> temporaryName(std::string_view prefix) {
    std::uint64_t random = 0;
    if (::getrandom(&random, sizeof(random), 0) != ssize_t{sizeof(random)})
        return std::nullopt;
    return std::string(prefix) + hexadecimal(random);
}

} // namespace platform::posix
