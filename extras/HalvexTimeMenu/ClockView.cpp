#include "extras/HalvexTimeMenu/ClockView.h"

#include "platform/Graphics.h"
#include "platform/Operation.h"
#include "platform/widgets/MenuExtra.h"
#include "ui/Theme.h"

#include <algorithm>
#include <cmath>
#include <utility>

using namespace platform;

namespace {

constexpr double kUpperFontSize = 8.5; // points
constexpr double kLowerFontSize = 10;
constexpr double kColumnGap = 10;

Size sizeOf(std::string text, const TextAttributes& attributes) {
    return graphics().sizeOfText(AttributedString(std::move(text), attributes));
}

} // namespace

ClockLook clockLook() {
    const auto theme = ui::currentTheme();
    const auto color = theme->color("Title");
    ClockLook look{
        .title = {.foregroundColor = color},
        .upper = {.font = theme->font({"", kUpperFontSize, false}),
                  .foregroundColor = theme->color("SecondLine")},
        .lower = {.font = theme->font({"", kLowerFontSize, false}), .foregroundColor = color}};
    if (const Font font = theme->font(); font != Font())
        look.title.font = font;
    return look;
}

void ClockView::setColumns(std::vector<TitleColumn> columns) {
    if (columns == columns_)
        return;
    columns_ = std::move(columns);
    setNeedsDisplay(true);
}

char ClockView::widestDigit(const TextAttributes& attributes) {
    const auto known = std::ranges::find(widestDigits_, attributes, &WidestDigit::attributes);
    if (known != widestDigits_.end())
        return known->digit;
    const std::string digits = "0123456789";
    const char widest = *std::ranges::max_element(
        digits, {}, [&](char digit) { return sizeOf(std::string(1, digit), attributes).width; });
    widestDigits_.push_back({attributes, widest});
    return widest;
}

double ClockView::reservedWidth(std::string_view text, const TextAttributes& attributes) {
    const auto isDigit = [](char c) { return c >= '0' && c <= '9'; };
    std::string widest(text);
    if (std::ranges::any_of(widest, isDigit))
        std::ranges::replace_if(widest, isDigit, widestDigit(attributes));
    return sizeOf(widest, attributes).width;
}

double ClockView::width(const TitleColumn& column) {
    const ClockLook look = clockLook();
    return std::max(reservedWidth(column.upper, look.upper),
                    reservedWidth(column.lower, look.lower));
}

double ClockView::widthOfColumns() {
    double total = 0;
    for (const TitleColumn& column : columns_)
        total += std::ceil(width(column)) + kColumnGap;
    return total - kColumnGap;
}

void ClockView::drawRect(const Rect& rect) {
    if (!hasColumns())
        return HalvexMenuViewBase::drawRect(rect);
    guardedOperation([&] { drawColumns(graphics().currentContext(), rect.size.height); });
}

void ClockView::drawColumns(GraphicsContext& context, double height) {
    const ClockLook look = clockLook();
    context.saveGraphicsState();
    context.setShouldSmoothFonts(false);
    if (owner() && owner()->isMenuDown())
        context.setCompositingOperation(CompositingOperation::XOR);
    double x = 0;
    for (const TitleColumn& column : columns_) {
        const double columnWidth = std::ceil(width(column));
        const auto draw = [&](const std::string& text, const TextAttributes& attributes,
                              double middle) {
            const AttributedString line(text, attributes);
            const Size size = graphics().sizeOfText(line);
            // Whole points keep the digits in place while they change.
            const double reserved = reservedWidth(text, attributes);
            context.drawText(line, {x + std::trunc((columnWidth - reserved) / 2),
                                    std::round(middle - size.height / 2)});
        };
        draw(column.upper, look.upper, height * 0.74);
        draw(column.lower, look.lower, height * 0.29);
        x += columnWidth + kColumnGap;
    }
    context.restoreGraphicsState();
}
