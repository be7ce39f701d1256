#include "platform/base/Utf8.h"

#include <array>
#include <cstdint>

std::size_t platform::utf8SequenceLength(std::string_view text) {
    const auto byte = [text](std::size_t i) -> std::uint32_t {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0U;
    };
    const std::uint32_t first = byte(0);
    if (first < 0x80)
        return text.empty() ? 0 : 1;
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
    const bool isSurrogate = character >= 0xD800 && character <= 0xDFFF;
    return character < kLeast[length] || isSurrogate || character > 0x10'FFFF ? 0 : length;
}
