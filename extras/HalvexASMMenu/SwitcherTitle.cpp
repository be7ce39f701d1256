#include "extras/HalvexASMMenu/SwitcherTitle.h"

#include "platform/Applications.h"
#include "platform/Graphics.h"
#include "platform/Log.h"
#include "platform/base/Utf8.h"

#include <algorithm>
#include <string_view>
#include <utility>
#include <vector>

using namespace platform;

namespace switcher {
namespace {

constexpr const char* kShowsKey = "Shows";         // "SwitcherShows" in the file
constexpr const char* kNameWidthKey = "NameWidth"; // "SwitcherNameWidth"
constexpr const char* kIcon = "icon";
constexpr const char* kName = "name";
constexpr const char* kBoth = "both";
constexpr double kSmallestNameWidth = 20;
constexpr double kLargestNameWidth = 1000;

bool fits(std::string text, double width) {
    return graphics().sizeOfText(AttributedString(std::move(text))).width <= width;
}

/// Returns where the text can be cut: before each character, and at the end.
std::vector<std::size_t> boundaries(std::string_view text) {
    std::vector<std::size_t> result{0};
    while (result.back() < text.size()) {
        const std::size_t length = utf8SequenceLength(text.substr(result.back()));
        result.push_back(result.back() + std::max<std::size_t>(length, 1));
    }
    return result;
}

/// A window with a title bar, with a hole for its contents.
BezierPath windowShape(const Rect& frame) {
    BezierPath shape;
    shape.setWindingRule(WindingRule::EvenOdd);
    shape.appendRoundedRect(frame, 1.5, 1.5);
    const Rect inside = insetRect(frame, 1, 1);
    shape.appendRect({inside.origin, {inside.size.width, inside.size.height - 2}});
    return shape;
}

} // namespace

const std::vector<std::string>& TitleStyle::keys() {
    static const std::vector<std::string> keys{kShowsKey, kNameWidthKey};
    return keys;
}

void TitleStyle::read(const Preferences& settings, const std::vector<std::string>& keys) {
    const auto contains = [&](const char* key) {
        return std::ranges::find(keys, key) != keys.end();
    };
    if (contains(kShowsKey))
        readShows(settings);
    if (contains(kNameWidthKey))
        readNameWidth(settings);
}

void TitleStyle::readShows(const Preferences& settings) {
    std::string shows = settings.string(kShowsKey, kIcon);
    if (shows != kIcon && shows != kName && shows != kBoth) {
        logLine("cannot use preference SwitcherShows in %@: %@ is not icon, name or both",
                settings.file(), shows);
        shows = kIcon;
    }
    hasIcon = shows != kName;
    hasName = shows != kIcon;
}

void TitleStyle::readNameWidth(const Preferences& settings) {
    nameWidth = settings.real(kNameWidthKey, kDefaultNameWidth);
    if (nameWidth >= kSmallestNameWidth && nameWidth <= kLargestNameWidth)
        return;
    logLine("cannot use preference SwitcherNameWidth in %@: it is not from 20 to 1000",
            settings.file());
    nameWidth = kDefaultNameWidth;
}

Title titleFor(const RunningApplication* active, const TitleStyle& style,
               const std::shared_ptr<Image>& empty) {
    if (!active)
        return {empty, std::nullopt};
    Title title;
    if (style.hasIcon)
        title.image = applications().icon(active->identifier, kIconSide);
    if ((style.hasName || !title.image) && !active->name.empty())
        title.text = shortened(active->name, style.nameWidth);
    if (!title.image && !title.text)
        title.image = empty;
    return title;
}

std::string shortened(const std::string& text, double width) {
    if (fits(text, width))
        return text;
    const auto cutAt = [&](std::size_t end) {
        const std::size_t last = text.find_last_not_of(' ', end == 0 ? end : end - 1);
        return (end == 0 || last == std::string::npos ? ""
                                                      : text.substr(0, std::min(end, last + 1))) +
               "…";
    };
    const auto cuts = boundaries(text);
    // The first cut that does not fit; the one before it does.
    const auto tooLong = std::partition_point(
        cuts.begin() + 1, cuts.end(), [&](std::size_t end) { return fits(cutAt(end), width); });
    return cutAt(*(tooLong - 1));
}

std::shared_ptr<Image> emptyIcon() {
    return graphics().templateImage(
        graphics().imageByDrawing({kIconSide, kIconSide}, [](GraphicsContext& context) {
            const Rect front{{5, 2}, {10, 9}};
            context.fillPath(windowShape({{1, 5}, {10, 9}}), Color{},
                             CompositingOperation::SourceOver);
            // The front window covers the other one, with a gap around it.
            context.fillRect(insetRect(front, -1, -1), Color{}, CompositingOperation::Clear);
            context.fillPath(windowShape(front), Color{}, CompositingOperation::SourceOver);
        }));
}

} // namespace switcher
