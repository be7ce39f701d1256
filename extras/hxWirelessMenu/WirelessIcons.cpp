#include "extras/hxWirelessMenu/WirelessIcons.h"

#include "platform/Graphics.h"

#include <cstddef>

using namespace platform;

namespace extras {
namespace {

using Symbol = WirelessIcons::Symbol;
using enum CompositingOperation;

// In points.
constexpr Size kSymbolSize{20, 14};
constexpr Point kSource{10, 0}; // of the waves
constexpr double kThickness = 2;
constexpr double kDistance = 4; // from one wave to the next
constexpr double kDot = 3;      // the radius of the wedge at the source, the first wave
constexpr int kWaves = 4;
constexpr Size kLockSize{10, 12};

constexpr double kSolid = 1;
constexpr double kFaint = 0.3; // opacity of the waves that the signal does not reach

/// Draws the waves from @p first on, solid up to @p level.
void drawWaves(GraphicsContext& context, int level, int first = 0) {
    for (int i = first; i < kWaves; ++i) {
        BezierPath path;
        path.appendArcWithCenter(kSource, i == 0 ? kDot : i * kDistance + kThickness, 45, 135);
        if (i == 0)
            path.lineToPoint(kSource);
        else
            path.appendArcWithCenter(kSource, i * kDistance, 135, 45, ArcDirection::Clockwise);
        path.closePath();
        context.fillPath(path, calibratedWhite(0, i < level ? kSolid : kFaint), Copy);
    }
}

/// Draws lines with a transparent border.
void drawLines(GraphicsContext& context, const BezierPath& lines, double opacity) {
    context.strokePath(lines, {.width = 3 * kThickness}, calibratedWhite(0), Clear);
    context.strokePath(lines, {.width = kThickness}, calibratedWhite(0, opacity), Copy);
}

void drawSlash(GraphicsContext& context, double opacity) {
    BezierPath line;
    line.moveToPoint({4, 14});
    line.lineToPoint({18, 0});
    drawLines(context, line, opacity);
}

void drawCross(GraphicsContext& context) {
    BezierPath lines;
    for (const double end : {0.0, 6.0}) {
        lines.moveToPoint({14, end});
        lines.lineToPoint({20, 6 - end});
    }
    drawLines(context, lines, kSolid);
}

void drawDots(GraphicsContext& context) {
    for (const double x : {5.0, 9.0, 13.0})
        context.fillRect({{x, 0}, {kThickness, kThickness}}, calibratedWhite(0), Copy);
}

void drawSymbol(GraphicsContext& context, Symbol symbol) {
    switch (symbol) {
    case Symbol::Connecting:
        drawWaves(context, 0, 1);
        return drawDots(context);
    case Symbol::Disconnected:
        drawWaves(context, 0);
        return drawCross(context);
    case Symbol::Off:
        drawWaves(context, 0);
        return drawSlash(context, kSolid);
    case Symbol::NoAdapter:
        drawWaves(context, 0);
        return drawSlash(context, kFaint);
    default:
        drawWaves(context, static_cast<int>(symbol));
    }
}

void drawLock(GraphicsContext& context) {
    context.fillRect({{0, 0}, {10, 6}}, calibratedWhite(0), Copy);
    BezierPath shackle;
    shackle.moveToPoint({3, 6});
    shackle.appendArcWithCenter({5, 9}, 2, 180, 0, ArcDirection::Clockwise);
    shackle.lineToPoint({7, 6});
    context.strokePath(shackle, {.width = kThickness}, calibratedWhite(0), Copy);
}

std::shared_ptr<Image> drawn(Size size, const Graphics::Draw& draw) {
    return graphics().templateImage(graphics().imageByDrawing(size, draw));
}

} // namespace

int levelOfStrength(int percent) {
    constexpr std::array kWeakest{5, 30, 55, 80}; // of the levels 1 to 4
    int level = 0;
    for (const int weakest : kWeakest)
        level += percent >= weakest;
    return level;
}

std::shared_ptr<Image> WirelessIcons::symbol(Symbol symbol) {
    auto& image = symbols_.at(static_cast<std::size_t>(symbol));
    if (!image)
        image = drawn(kSymbolSize, [&](GraphicsContext& context) { drawSymbol(context, symbol); });
    return image;
}

std::shared_ptr<Image> WirelessIcons::lock() {
    if (!lock_)
        lock_ = drawn(kLockSize, drawLock);
    return lock_;
}

} // namespace extras
