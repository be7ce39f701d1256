#include "ui/Theme.h"

#include "platform/Appearance.h"
#include "platform/FileManager.h"
#include "platform/Graphics.h"
#include "platform/Operation.h"
#include "platform/base/PathStrings.h"
#include "ui/ThemeFile.h"
#include "ui/TintedImage.h"

#include <initializer_list>
#include <utility>

using namespace platform;

namespace ui {
namespace {

constexpr const char* kIconsFolder = "Icons";
constexpr const char* kIconTint = "IconTint";

/// Returns the path of the image @p name in @p folder. Empty if it is missing.
std::string imagePath(const std::string& folder, std::string_view name) {
    for (const char* ending : {".png", "Template.png"}) {
        std::string path = appendingPathComponent(folder, std::string(name) + ending);
        if (fileManager().isFile(path))
            return path;
    }
    return {};
}

} // namespace

Theme::Theme() = default;
Theme::~Theme() = default;

const std::string& Theme::name() const {
    return name_;
}

std::optional<Color> Theme::color(std::string_view name) const {
    return guardedOperation([&]() -> std::optional<Color> {
        const Colors& colors = appearance().isDark() ? dark_ : light_;
        const auto found = colors.find(name);
        return found == colors.end() ? std::nullopt : std::optional(found->second);
    });
}

Color Theme::color(std::string_view name, const Color& fallback) const {
    return color(name).value_or(fallback);
}

Font Theme::font(Font font) const {
    return guardedOperation([&] {
        if (font.family.empty())
            font.family = font_.family;
        if (font.size == 0)
            font.size = font_.size;
        font.bold = font.bold || font_.bold;
        return font;
    });
}

std::shared_ptr<Image> Theme::icon(std::string_view name) const {
    return guardedOperation([&]() -> std::shared_ptr<Image> {
        if (folder_.empty() || !ThemeFile::isName(name))
            return nullptr;
        auto found = icons_.find(name);
        if (found == icons_.end()) {
            const std::string path = imagePath(appendingPathComponent(folder_, kIconsFolder), name);
            found = icons_
                        .emplace(name,
                                 path.empty() ? nullptr : graphics().imageWithContentsOfFile(path))
                        .first;
        }
        return tinted(found->second);
    });
}

std::shared_ptr<Image> Theme::tinted(const std::shared_ptr<Image>& image) const {
    const auto tint = color(kIconTint);
    if (!image || image->isTemplate() || !tint)
        return image;
    return HalvexTintedImage::tintedImageWithColor(*image, *tint);
}

} // namespace ui
