#include "apps/draw/Verbs.h"

#include <array>
#include <cmath>
#include <functional>
#include <memory>
#include <string>
#include <utility>

using namespace platform;

namespace apps {
namespace {

constexpr auto kOver = CompositingOperation::SourceOver;
constexpr Size kCell{96, 84};       // points
constexpr double kLabelHeight = 18; // at the bottom of a cell
constexpr Rect kPlot{{8, 22}, {80, 54}};

struct Options {
    std::string file;
    bool dark = false;
    double scale = 1;
};

/// What the cells draw with.
struct Palette {
    Color ground;
    Color ink;
    Color accent;
    Color other;
};

const Palette kLight{calibratedWhite(0.96), calibratedWhite(0.1), {0.1, 0.4, 0.9}, {0.9, 0.4, 0.1}};
const Palette kDark{calibratedWhite(0.15), calibratedWhite(0.92), {0.4, 0.7, 1}, {1, 0.65, 0.3}};

/// A picture with a label. @p draw draws in kPlot.
struct Cell {
    std::string label;
    std::function<void(GraphicsContext& context, const Palette& palette)> draw;
};

BezierPath lines(std::initializer_list<Point> points) {
    BezierPath path;
    for (const Point point : points)
        path.lineToPoint(point);
    return path;
}

BezierPath rectangle(const Rect& rect) {
    BezierPath path;
    path.appendRect(rect);
    return path;
}

BezierPath oval(const Rect& rect) {
    BezierPath path;
    path.appendOvalInRect(rect);
    return path;
}

BezierPath star() {
    BezierPath path;
    for (int i = 0; i < 5; ++i) {
        const double angle = std::acos(-1.0) * (0.5 + 0.8 * i);
        path.lineToPoint({48 + 27 * std::cos(angle), 46 + 27 * std::sin(angle)});
    }
    path.closePath();
    return path;
}

BezierPath curves() {
    BezierPath path;
    path.moveToPoint({8, 30});
    path.curveToPoint({48, 60}, {28, -10}, {28, 100});
    path.quadraticCurveToPoint({88, 60}, {68, 10});
    return path;
}

BezierPath sector(ArcDirection direction) {
    BezierPath path;
    path.moveToPoint({48, 46});
    path.appendArcWithCenter({48, 46}, 26, 30, 130, direction);
    path.closePath();
    return path;
}

GradientStops colors(const Palette& palette) {
    return {{0, palette.accent}, {0.5, {1, 1, 1, 0}}, {1, palette.other}};
}

/// Returns a picture of 8 x 8 points that shows which way is up.
std::shared_ptr<Image> arrow(const Palette& palette) {
    return graphics().imageByDrawing({16, 16}, [&](GraphicsContext& context) {
        context.fillPath(rectangle({{0, 0}, {16, 16}}), palette.accent, kOver);
        context.strokePath(lines({{8, 3}, {8, 13}, {4, 9}}), {.width = 2}, palette.ground, kOver);
        context.strokePath(lines({{8, 13}, {12, 9}}), {.width = 2}, palette.ground, kOver);
    });
}

void strokeThree(GraphicsContext& context, const Palette& palette,
                 const std::function<void(StrokeStyle& style, int index)>& change) {
    for (int i = 0; i < 3; ++i) {
        StrokeStyle style{.width = 8};
        change(style, i);
        const double y = 30 + 16.0 * i;
        context.strokePath(lines({{18, y}, {78, y}}), style, palette.accent, kOver);
        context.strokePath(lines({{18, y}, {78, y}}), {.width = 1}, palette.ink, kOver);
    }
}

void strokeCorners(GraphicsContext& context, const Palette& palette) {
    for (int i = 0; i < 3; ++i) {
        const double x = 10 + 26.0 * i;
        const BezierPath corner = lines({{x, 28}, {x + 11, 66}, {x + 22, 28}});
        context.strokePath(corner, {.width = 8, .join = static_cast<LineJoin>(i)}, palette.accent,
                           kOver);
        context.strokePath(corner, {.width = 1}, palette.ink, kOver);
    }
}

/// Draws a rectangle, text and an image around the middle of the plot.
void drawAll(GraphicsContext& context, const Palette& palette) {
    context.fillRect({{-30, -8}, {60, 16}}, {1, 0.2, 0.2, 0.4}, kOver);
    context.drawImage(*arrow(palette), {{-28, -8}, {16, 16}}, {{0, 0}, {16, 16}}, kOver, 1);
    TextAttributes attributes;
    attributes.foregroundColor = palette.ink;
    context.drawText(AttributedString("Text", attributes), {-6, -8});
}

void drawTransformed(GraphicsContext& context, const Palette& palette,
                     const std::function<void(GraphicsContext& context)>& transform) {
    context.translateBy(48, 48);
    transform(context);
    drawAll(context, palette);
}

void drawBlended(GraphicsContext& context, const Palette& palette, CompositingOperation operation) {
    const Rect left{{14, 26}, {44, 32}};
    const Rect right{{38, 40}, {44, 32}};
    const auto image = graphics().imageByDrawing(kCell, [&](GraphicsContext& layer) {
        layer.fillPath(oval(left), palette.accent, kOver);
        layer.fillPathWithGradient(
            oval(right),
            LinearGradient{{38, 0}, {82, 0}, {{0, palette.other}, {1, {1, 0.5, 0, 0.3}}}},
            operation);
    });
    context.drawImage(*image, {{}, kCell}, {{}, kCell}, kOver, 1);
}

std::vector<Cell> pathCells() {
    return {
        {"curves",
         [](auto& context, const auto& palette) {
             context.strokePath(curves(), {.width = 3}, palette.accent, kOver);
         }},
        {"ovals",
         [](auto& context, const auto& palette) {
             context.fillPath(oval(kPlot), palette.accent, kOver);
             context.strokePath(oval(insetRect(kPlot, 12, 8)), {.width = 2}, palette.ground, kOver);
         }},
        {"rounded",
         [](auto& context, const auto& palette) {
             BezierPath path;
             path.appendRoundedRect(kPlot, 16, 10);
             context.fillPath(path, palette.accent, kOver);
         }},
        {"arcs",
         [](auto& context, const auto& palette) {
             context.fillPath(sector(ArcDirection::Clockwise), palette.accent, kOver);
             context.translateBy(1, 3);
             context.fillPath(sector(ArcDirection::Counterclockwise), palette.other, kOver);
         }},
        {"nonzero", [](auto& context,
                       const auto& palette) { context.fillPath(star(), palette.accent, kOver); }},
        {"even-odd",
         [](auto& context, const auto& palette) {
             BezierPath path = star();
             path.setWindingRule(WindingRule::EvenOdd);
             context.fillPath(path, palette.accent, kOver);
         }},
        {"widths",
         [](auto& context, const auto& palette) {
             for (int i = 0; i < 7; ++i)
                 context.strokePath(lines({{12 + 10.0 * i, 26}, {24 + 10.0 * i, 74}}),
                                    {.width = 0.25 * (1 << i) / 2}, palette.ink, kOver);
         }},
        {"caps",
         [](auto& context, const auto& palette) {
             strokeThree(context, palette,
                         [](StrokeStyle& style, int i) { style.cap = static_cast<LineCap>(i); });
         }},
        {"joins", [](auto& context, const auto& palette) { strokeCorners(context, palette); }},
        {"dashes",
         [](auto& context, const auto& palette) {
             strokeThree(context, palette, [](StrokeStyle& style, int i) {
                 constexpr std::array<double, 3> kPhases{0, 6, 0};
                 style.width = 5;
                 style.dashes = i == 2 ? std::vector<double>{0, 10} : std::vector<double>{12, 6};
                 style.dashPhase = kPhases.at(static_cast<std::size_t>(i));
                 style.cap = i == 2 ? LineCap::Round : LineCap::Butt;
             });
         }},
        {"dashed oval",
         [](auto& context, const auto& palette) {
             context.strokePath(oval(insetRect(kPlot, 4, 4)), {.width = 5, .dashes = {9, 4}},
                                palette.accent, kOver);
         }},
    };
}

std::vector<Cell> paintCells() {
    return {
        {"linear",
         [](auto& context, const auto& palette) {
             context.fillPathWithGradient(
                 rectangle(kPlot), LinearGradient{{8, 22}, {88, 76}, colors(palette)}, kOver);
         }},
        {"radial",
         [](auto& context, const auto& palette) {
             context.fillPathWithGradient(
                 oval(kPlot), RadialGradient{{40, 56}, 2, {48, 48}, 34, colors(palette)}, kOver);
         }},
        {"cone",
         [](auto& context, const auto& palette) {
             context.fillPathWithGradient(
                 rectangle(kPlot),
                 RadialGradient{
                     {20, 34}, 4, {66, 54}, 18, {{0, palette.accent}, {1, palette.other}}},
                 kOver);
         }},
        {"clip",
         [](auto& context, const auto& palette) {
             context.clipToPath(star());
             for (double x = 8; x < 88; x += 8)
                 context.fillRect({{x, 18}, {5, 60}}, palette.accent, kOver);
             context.clipToPath(oval({{30, 28}, {36, 36}}));
             context.fillRect(kPlot, palette.other, kOver);
         }},
        {"moved",
         [](auto& context, const auto& palette) {
             drawTransformed(context, palette, [](GraphicsContext&) {});
         }},
        {"rotated",
         [](auto& context, const auto& palette) {
             drawTransformed(context, palette, [](GraphicsContext& c) { c.rotateByDegrees(30); });
         }},
        {"quarter turn",
         [](auto& context, const auto& palette) {
             drawTransformed(context, palette, [](GraphicsContext& c) { c.rotateByDegrees(90); });
         }},
        {"scaled",
         [](auto& context, const auto& palette) {
             drawTransformed(context, palette, [](GraphicsContext& c) { c.scaleBy(1.25, 2.5); });
         }},
        {"mirrored",
         [](auto& context, const auto& palette) {
             drawTransformed(context, palette, [](GraphicsContext& c) { c.scaleBy(-1, 1); });
         }},
        {"wide pen",
         [](auto& context, const auto& palette) {
             context.translateBy(48, 48);
             context.scaleBy(3, 1);
             context.strokePath(oval({{-11, -22}, {22, 44}}), {.width = 4}, palette.accent, kOver);
         }},
        {"text shadow",
         [](auto& context, const auto& palette) {
             TextAttributes attributes{.font = Font{.family = {}, .size = 28, .bold = true}};
             attributes.foregroundColor = palette.accent;
             context.setShadow({3, -3}, 4);
             context.drawText(AttributedString("Clock", attributes), {8, 34});
         }},
    };
}

std::vector<Cell> operationCells() {
    std::vector<Cell> cells;
    for (int number = 0; number <= 13; ++number)
        cells.push_back({"operation " + std::to_string(number),
                         [number](GraphicsContext& context, const Palette& palette) {
                             drawBlended(context, palette,
                                         static_cast<CompositingOperation>(number));
                         }});
    return cells;
}

std::vector<Cell> allCells() {
    std::vector<Cell> cells = pathCells();
    for (const auto& more : {paintCells(), operationCells()})
        cells.insert(cells.end(), more.begin(), more.end());
    return cells;
}

void drawCell(GraphicsContext& context, const Cell& cell, Point origin, const Palette& palette) {
    context.saveGraphicsState();
    context.translateBy(origin.x, origin.y);
    TextAttributes attributes{.font = Font{.family = {}, .size = 11}};
    attributes.foregroundColor = palette.ink;
    attributes.paragraphStyle = ParagraphStyle{TextAlignment::Center, LineBreakMode::Clipping};
    context.drawTextInRect(AttributedString(cell.label, attributes),
                           {{0, 0}, {kCell.width, kLabelHeight}});
    cell.draw(context, palette);
    context.restoreGraphicsState();
}

ExitStatus drawSheet(const Options& options) {
    constexpr std::size_t kColumns = 9;
    const Palette& palette = options.dark ? kDark : kLight;
    const std::vector<Cell> cells = allCells();
    const std::size_t rows = (cells.size() + kColumns - 1) / kColumns;
    const Size size{kColumns * kCell.width, static_cast<double>(rows) * kCell.height};
    const auto image = graphics().imageByDrawing(size, [&](GraphicsContext& context) {
        context.fillRect({{}, size}, palette.ground, CompositingOperation::Copy);
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const auto column = static_cast<double>(i % kColumns);
            const std::size_t row = i / kColumns + 1; // from the top
            drawCell(context, cells[i],
                     {column * kCell.width, size.height - static_cast<double>(row) * kCell.height},
                     palette);
        }
    });
    return writePng(*image, options.file);
}

} // namespace

void addSheetVerb(CLI::App& commands, DrawingTask& task) {
    const auto options = std::make_shared<Options>();
    CLI::App* sheet =
        commands.add_subcommand("sheet", "Draw an example of every drawing operation");
    sheet->add_option("FILE.png", options->file, "Write the picture to this file")->required();
    sheet->add_flag("--dark", options->dark, "Draw on a dark background");
    sheet->add_option("--scale", options->scale, "Pixels per point")->check(CLI::Range(0.5, 8.0));
    sheet->callback([options, &task] {
        task = {DrawingTask::Needs::Drawing, [options] { return drawSheet(*options); },
                options->scale};
    });
}

} // namespace apps
