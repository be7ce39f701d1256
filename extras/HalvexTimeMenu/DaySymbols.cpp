#include "extras/HalvexTimeMenu/DaySymbols.h"

#include "platform/Graphics.h"

#include <cmath>
#include <numbers>

using namespace platform;

namespace {

constexpr double kSide = 12;
constexpr Point kCenter{6, 6};

std::shared_ptr<Image> symbol(const Graphics::Draw& draw) {
    return graphics().templateImage(graphics().imageByDrawing({kSide, kSide}, draw));
}

Point onCircle(double radius, int eighths) {
    const double angle = eighths * std::numbers::pi / 4;
    return {kCenter.x + radius * std::cos(angle), kCenter.y + radius * std::sin(angle)};
}

} // namespace

std::shared_ptr<Image> sunSymbol() {
    return symbol([](GraphicsContext& context) {
        BezierPath disc;
        disc.appendArcWithCenter(kCenter, 2.5, 0, 360);
        context.fillPath(disc, {}, CompositingOperation::SourceOver);
        BezierPath rays;
        for (int i = 0; i < 8; ++i) {
            rays.moveToPoint(onCircle(4, i));
            rays.lineToPoint(onCircle(5.4, i));
        }
        context.strokePath(rays, {.width = 1, .cap = LineCap::Round}, {},
                           CompositingOperation::SourceOver);
    });
}

std::shared_ptr<Image> moonSymbol() {
    return symbol([](GraphicsContext& context) {
        BezierPath disc;
        disc.appendArcWithCenter(kCenter, 4.5, 0, 360);
        context.fillPath(disc, {}, CompositingOperation::SourceOver);
        BezierPath shadow;
        shadow.appendArcWithCenter({8.5, 8}, 4, 0, 360);
        context.fillPath(shadow, {}, CompositingOperation::DestinationOut);
    });
}

std::shared_ptr<Image> blankSymbol() {
    return symbol([](GraphicsContext&) {});
}
