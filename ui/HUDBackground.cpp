#include "ui/HUDBackground.h"

#include "platform/widgets/Panel.h"

#include <cmath>

using namespace platform;

namespace {

constexpr double kCornerRadius = 6.0;

BezierPath bodyPath(Size size) {
    const double right = std::trunc(size.width);
    const double middle = std::trunc(0.5 * size.width);
    const double top = std::trunc(size.height - kPanelTitleBarHeight);
    const double halfway = std::trunc(0.5 * (size.height - kPanelTitleBarHeight));
    BezierPath path;
    path.moveToPoint({middle, 0});
    path.appendArcFromPoint({right, 0}, {right, halfway}, kCornerRadius);
    path.lineToPoint({right, top});
    path.lineToPoint({0, top});
    // This arc starts at the current point and adds no curve: the corner stays square.
    path.appendArcFromPoint({0, top}, {0, halfway}, kCornerRadius);
    path.appendArcFromPoint({0, 0}, {middle, 0}, kCornerRadius);
    path.closePath();
    return path;
}

BezierPath titleBarPath(Size size) {
    const double right = std::trunc(size.width);
    const double middle = std::trunc(0.5 * size.width);
    const double bottom = std::trunc(size.height - kPanelTitleBarHeight);
    const double top = std::trunc(size.height);
    BezierPath path;
    path.moveToPoint({0, bottom});
    path.lineToPoint({right, bottom});
    path.appendArcFromPoint({right, top}, {middle, top}, kCornerRadius);
    path.appendArcFromPoint({0, top}, {0, bottom}, kCornerRadius);
    path.closePath();
    return path;
}

AttributedString titleText(const std::string& title) {
    TextAttributes attributes;
    attributes.font = Font{.family = {}, .size = systemFontSize(ControlSize::Small)};
    attributes.foregroundColor = calibratedWhite(1);
    attributes.paragraphStyle =
        ParagraphStyle{TextAlignment::Center, LineBreakMode::TruncatingTail};
    return AttributedString(title, attributes);
}

void drawTitle(GraphicsContext& context, const AttributedString& title, Size size) {
    const double height = graphics().sizeOfText(title).height;
    const Rect bar{{0, size.height - kPanelTitleBarHeight}, {size.width, kPanelTitleBarHeight}};
    context.drawTextInRect(
        title, insetRect(bar, kPanelTitleBarHeight, (kPanelTitleBarHeight - height) * 0.5));
}

} // namespace

void ui::drawHUDBackground(GraphicsContext& context, Size size, const std::string& title,
                           HUDPart part) {
    const auto operation = CompositingOperation::SourceOver;
    if (part != HUDPart::TitleBar)
        context.fillPath(bodyPath(size), calibratedWhite(0.1, 0.75), operation);
    if (part == HUDPart::Body)
        return;
    context.fillPath(titleBarPath(size), calibratedWhite(0.25, 0.75), operation);
    drawTitle(context, titleText(title), size);
}
