#include "extras/HalvexDateCalMenu/DayIcon.h"

#include "platform/Graphics.h"
#include "ui/TintedImage.h"

#include <array>
#include <string_view>

using namespace platform;

namespace extras {
namespace {

// All in points.
constexpr double kUnit = 2; // a dot of a digit
constexpr Size kPage{18, 18};
constexpr double kCorner = 3;
constexpr double kDigitBottom = 2;
constexpr double kRingLeft = 4; // from either side of the page
constexpr int kDigitColumns = 3;
constexpr int kDigitRows = 5;

/// Each digit from its top row to its bottom row; '#' is a dot.
constexpr std::array<std::string_view, 10> kDigits{{
    "###"
    "# #"
    "# #"
    "# #"
    "###",
    " # "
    "## "
    " # "
    " # "
    "###",
    "###"
    "  #"
    "###"
    "#  "
    "###",
    "###"
    "  #"
    "###"
    "  #"
    "###",
    "# #"
    "# #"
    "###"
    "  #"
    "  #",
    "###"
    "#  "
    "###"
    "  #"
    "###",
    "###"
    "#  "
    "###"
    "# #"
    "###",
    "###"
    "  #"
    "  #"
    "  #"
    "  #",
    "###"
    "# #"
    "###"
    "# #"
    "###",
    "###"
    "# #"
    "###"
    "  #"
    "###",
}};

void cut(GraphicsContext& context, const Rect& rect) {
    context.fillRect(rect, clearColor(), CompositingOperation::Clear);
}

void cutDigit(GraphicsContext& context, int digit, double left) {
    const char* dot = kDigits[static_cast<std::size_t>(digit)].data();
    for (int row = kDigitRows - 1; row >= 0; --row)
        for (int column = 0; column < kDigitColumns; ++column)
            if (*dot++ == '#')
                cut(context, {{left + column * kUnit, kDigitBottom + row * kUnit}, {kUnit, kUnit}});
}

void drawPage(GraphicsContext& context, int day) {
    BezierPath page;
    page.appendRoundedRect({{}, kPage}, kCorner, kCorner);
    context.fillPath(page, calibratedWhite(0), CompositingOperation::SourceOver);
    for (const double x : {kRingLeft, kPage.width - kRingLeft - kUnit})
        cut(context, {{x, kPage.height - kUnit}, {kUnit, kUnit}});
    constexpr double kDigitWidth = kDigitColumns * kUnit;
    if (day >= 10) {
        const double left = (kPage.width - kUnit) / 2 - kDigitWidth;
        cutDigit(context, day / 10, left);
        cutDigit(context, day % 10, left + kDigitWidth + kUnit);
    } else {
        cutDigit(context, day, (kPage.width - kDigitWidth) / 2);
    }
}

} // namespace

std::shared_ptr<Image> dayIcon(int day, const std::optional<Color>& color) {
    const auto page = graphics().imageByDrawing(
        kPage, [day](GraphicsContext& context) { drawPage(context, day); });
    if (!page || !color)
        return graphics().templateImage(page);
    return HalvexTintedImage::tintedImageWithColor(*page, *color, CompositingOperation::SourceAtop);
}

} // namespace extras
