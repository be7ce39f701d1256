#include "ui/ThemeFile.h"

#include "platform/PropertyListService.h"
#include "platform/base/PathStrings.h"
#include "platform/base/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <initializer_list>

using namespace platform;

namespace ui {
namespace {

constexpr std::uint64_t kMaximumBytes = 256 << 10;
constexpr std::size_t kMaximumNameBytes = 200;
constexpr double kSmallestFont = 8; // points
constexpr double kLargestFont = 18;

/// Why a theme cannot be used.
struct Invalid {
    std::string reason;
};

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

/// Returns the dictionary @p value, called @p name in the reason.
const PropertyList::Dictionary& dictionary(const PropertyList& value, std::string_view name) {
    if (!value.dictionary())
        throw Invalid{std::string(name) + " is not a dictionary"};
    return *value.dictionary();
}

/// Checks that @p values has no keys but @p known, so that a misspelt key does not go unnoticed.
void checkKeys(const PropertyList::Dictionary& values,
               std::initializer_list<std::string_view> known, std::string_view name) {
    for (const auto& [key, value] : values)
        if (std::ranges::find(known, key) == known.end())
            throw Invalid{std::string(name) + " has the unknown key " + quoted(key)};
}

/// Returns the colour "#rrggbb" or "#rrggbbaa".
std::optional<Color> parsedColor(std::string_view text) {
    if ((text.size() != 7 && text.size() != 9) || text.front() != '#')
        return std::nullopt;
    double parts[4]{0, 0, 0, 1};
    for (std::size_t i = 1; i < text.size(); i += 2) {
        unsigned byte = 0;
        const auto [end, error] = std::from_chars(&text[i], &text[i] + 2, byte, 16);
        if (error != std::errc() || end != &text[i] + 2)
            return std::nullopt;
        parts[i / 2] = byte / 255.0;
    }
    return Color{parts[0], parts[1], parts[2], parts[3]};
}

std::map<std::string, Color, std::less<>> parsedColors(const PropertyList::Dictionary& colors,
                                                       const char* look) {
    std::map<std::string, Color, std::less<>> result;
    const PropertyList* const list = colors.find(look);
    if (!list)
        return result;
    for (const auto& [name, value] : dictionary(*list, look)) {
        const auto color = parsedColor(value.string().value_or(""));
        if (!color)
            throw Invalid{"the " + std::string(look) + " color " + quoted(name) +
                          " is not a text like #1a2b3c or #1a2b3c80"};
        result[name] = *color;
    }
    return result;
}

Font parsedFont(const PropertyList& value) {
    const auto& list = dictionary(value, "Font");
    checkKeys(list, {"Family", "Size", "Bold"}, "Font");
    Font font;
    if (const auto* const family = list.find("Family")) {
        if (family->string().value_or("").empty())
            throw Invalid{"the font's Family is not a name"};
        font.family = *family->string();
    }
    if (const auto* const size = list.find("Size")) {
        font.size =
            size->integer() ? static_cast<double>(*size->integer()) : size->real().value_or(0);
        if (!(font.size >= kSmallestFont && font.size <= kLargestFont))
            throw Invalid{"the font's Size is not a number from 8 to 18"};
    }
    if (const auto* const bold = list.find("Bold")) {
        if (!bold->boolean())
            throw Invalid{"the font's Bold is not true or false"};
        font.bold = *bold->boolean();
    }
    return font;
}

} // namespace

std::shared_ptr<const Theme> ThemeFile::defaultLook() {
    static const std::shared_ptr<const Theme> look(new Theme);
    return look;
}

bool ThemeFile::isName(std::string_view name) {
    if (name.empty() || name.size() > kMaximumNameBytes || name.front() == '.')
        return false;
    while (!name.empty()) {
        const auto first = static_cast<unsigned char>(name.front());
        const std::size_t length = utf8SequenceLength(name);
        if (length == 0 || first < 0x20 || first == 0x7F || first == '/')
            return false;
        name.remove_prefix(length);
    }
    return true;
}

std::shared_ptr<const Theme> ThemeFile::read(const std::string& folder, std::string& reason) {
    const auto file = propertyLists().read(appendingPathComponent(folder, kName), kMaximumBytes);
    if (!file) {
        reason = file.error.text();
        return nullptr;
    }
    try {
        const auto& root = dictionary(*file.value, "the root");
        checkKeys(root, {"Colors", "Font"}, "the theme");
        const std::shared_ptr<Theme> theme(new Theme);
        theme->name_ = lastPathComponent(folder);
        theme->folder_ = folder;
        if (const PropertyList* const value = root.find("Colors")) {
            const auto& colors = dictionary(*value, "Colors");
            checkKeys(colors, {"Light", "Dark"}, "Colors");
            theme->light_ = parsedColors(colors, "Light");
            theme->dark_ = parsedColors(colors, "Dark");
        }
        if (const PropertyList* const font = root.find("Font"))
            theme->font_ = parsedFont(*font);
        return theme;
    } catch (const Invalid& invalid) {
        reason = invalid.reason;
        return nullptr;
    }
}

} // namespace ui
