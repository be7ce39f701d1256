#include "apps/support/XSettings.h"

#include <QtEndian>

#include <array>
#include <charconv>
#include <cstdint>

namespace apps {
namespace {

/// Reads values in the byte order of the block. After reading past the end, isValid() is false.
class Reader {
  public:
    Reader(QByteArrayView block, bool bigEndian) : rest_(block), bigEndian_(bigEndian) {}

    bool isValid() const { return valid_; }
    template <class T>
    T integer() {
        const QByteArrayView bytes = take(sizeof(T));
        if (!valid_)
            return 0;
        return bigEndian_ ? qFromBigEndian<T>(bytes.data()) : qFromLittleEndian<T>(bytes.data());
    }
    std::string_view text(std::size_t length) {
        const QByteArrayView bytes = take(length);
        take((4 - length % 4) % 4); // texts are padded to multiples of four bytes
        return {bytes.data(), static_cast<std::size_t>(bytes.size())};
    }
    QByteArrayView take(std::size_t length) {
        valid_ = valid_ && length <= static_cast<std::size_t>(rest_.size());
        if (!valid_)
            return {};
        const auto size = static_cast<qsizetype>(length);
        const QByteArrayView taken = rest_.first(size);
        rest_ = rest_.sliced(size);
        return taken;
    }

  private:
    QByteArrayView rest_;
    bool bigEndian_;
    bool valid_ = true;
};

enum class Type : std::uint8_t { Integer, String, Color };

constexpr std::size_t kIntegerSize = 4;
constexpr std::size_t kColorSize = 8;

/// Style words of Pango, which follow the family.
constexpr std::array<std::string_view, 11> kStyles = {"Regular", "Normal",  "Book",     "Roman",
                                                      "Medium",  "Light",   "Bold",     "Semi-Bold",
                                                      "Italic",  "Oblique", "Condensed"};

/// Removes and returns the last word.
std::string_view takeLastWord(std::string_view& text) {
    const std::size_t end = text.find_last_not_of(" ,");
    text = end == std::string_view::npos ? std::string_view() : text.substr(0, end + 1);
    const std::size_t gap = text.find_last_of(" ,");
    const std::string_view word = gap == std::string_view::npos ? text : text.substr(gap + 1);
    text.remove_suffix(word.size());
    return word;
}

bool isStyle(std::string_view word) {
    for (const std::string_view style : kStyles)
        if (word == style)
            return true;
    return false;
}

} // namespace

std::optional<std::string> stringInXSettings(QByteArrayView block, std::string_view name) {
    constexpr std::size_t kOrderSize = 4; // with three unused bytes
    constexpr char kBigEndian = 1;
    Reader reader(block, !block.isEmpty() && block.front() == kBigEndian);
    reader.take(kOrderSize);
    reader.integer<std::uint32_t>(); // the serial number of the block
    const auto count = reader.integer<std::uint32_t>();
    for (std::uint32_t i = 0; i < count && reader.isValid(); ++i) {
        const auto type = static_cast<Type>(reader.integer<std::uint8_t>());
        reader.take(1);
        const std::string_view key = reader.text(reader.integer<std::uint16_t>());
        reader.integer<std::uint32_t>(); // the serial number of the setting
        if (type != Type::String) {
            reader.take(type == Type::Color ? kColorSize : kIntegerSize);
            continue;
        }
        const std::string_view value = reader.text(reader.integer<std::uint32_t>());
        if (reader.isValid() && key == name)
            return std::string(value);
    }
    return std::nullopt;
}

std::optional<FontDescription> parseFontDescription(std::string_view text) {
    constexpr double kMaximum = 100;
    FontDescription font;
    const std::string_view size = takeLastWord(text);
    const auto [end, error] = std::from_chars(size.data(), size.data() + size.size(), font.points);
    if (error != std::errc() || end != size.data() + size.size() || !(font.points >= 1) ||
        font.points > kMaximum)
        return std::nullopt;
    std::string_view family = text;
    while (!family.empty()) {
        std::string_view shorter = family;
        const std::string_view word = takeLastWord(shorter);
        if (word.empty())
            return std::nullopt;
        if (!isStyle(word)) {
            font.family = std::string(shorter) + std::string(word);
            return font;
        }
        family = shorter;
    }
    return std::nullopt;
}

} // namespace apps
