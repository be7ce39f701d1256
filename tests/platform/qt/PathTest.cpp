#include "Canvas.h"
#include "platform/qt/QtImage.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <numbers>

using namespace platform;
using test::Canvas;

namespace {

constexpr double kPi = std::numbers::pi;
constexpr auto kOver = CompositingOperation::SourceOver;
constexpr double kScales[] = {1, 1.5, 2};
const Color kBlack{0, 0, 0, 1};

BezierPath pathOf(const std::function<void(BezierPath&)>& append) {
    BezierPath path;
    append(path);
    return path;
}

BezierPath lines(std::initializer_list<Point> points) {
    BezierPath path;
    for (const Point point : points)
        path.lineToPoint(point);
    return path;
}

BezierPath closed(BezierPath path) {
    path.closePath();
    return path;
}

BezierPath ring(WindingRule rule) {
    return pathOf([&](BezierPath& path) {
        path.setWindingRule(rule);
        path.appendRect({{5, 5}, {40, 40}});
        path.appendRect({{15, 15}, {20, 20}});
    });
}

/// Draws with a canvas of 60 x 60 points at each scale, and compares the area that is covered.
void expectArea(const char* name, double area, const std::function<void(Canvas&)>& draw) {
    for (const double scale : kScales) {
        Canvas canvas(60, 60, scale);
        draw(canvas);
        EXPECT_NEAR(canvas.coverage() / (scale * scale), area, 0.4 + area * 1e-3)
            << name << " at scale " << scale;
    }
}

TEST(Paths, FillTheAreaOfTheirShape) {
    const std::tuple<const char*, double, BezierPath> cases[] = {
        {"oval", kPi * 20 * 10, pathOf([](BezierPath& path) {
             path.appendOvalInRect({{5, 5}, {40, 20}});
         })},
        {"rounded rectangle", 50 * 30 - (4 - kPi) * 8 * 5, pathOf([](BezierPath& path) {
             path.appendRoundedRect({{5, 5}, {50, 30}}, 8, 5);
         })},
        {"three quarters of a circle, from the centre", kPi * 400 * 3 / 4,
         pathOf([](BezierPath& path) {
             path.moveToPoint({30, 30});
             path.appendArcWithCenter({30, 30}, 20, 90, 0);
         })},
        {"the other quarter", kPi * 400 / 4, pathOf([](BezierPath& path) {
             path.moveToPoint({30, 30});
             path.appendArcWithCenter({30, 30}, 20, 90, 0, ArcDirection::Clockwise);
         })},
        {"quadratic curve", 800, pathOf([](BezierPath& path) {
             path.moveToPoint({10, 10});
             path.quadraticCurveToPoint({50, 10}, {30, 70});
         })},
        {"cubic curve", 21 * 160 / 3.0, pathOf([](BezierPath& path) {
             path.moveToPoint({10, 10});
             path.curveToPoint({50, 10}, {20, 10 + 160 / 3.0}, {40, 10 + 160 / 3.0});
         })},
        {"nonzero", 1600, ring(WindingRule::NonZero)},
        {"even-odd", 1200, ring(WindingRule::EvenOdd)},
        {"a line after closePath starts where the subpath does", 200, pathOf([](BezierPath& path) {
             path.appendRect({{10, 10}, {20, 20}});
             path.lineToPoint({10, 50});
             path.lineToPoint({30, 30});
             path.lineToPoint({30, 10});
         })},
    };
    for (const auto& [name, area, path] : cases)
        expectArea(name, area,
                   [&shape = path](Canvas& canvas) { canvas->fillPath(shape, kBlack, kOver); });
}

TEST(Paths, AreStrokedWithTheirWidthCapsJoinsAndDashes) {
    const BezierPath line = lines({{10, 30}, {40, 30}});
    const BezierPath angle = lines({{10, 10}, {40, 10}, {40, 40}});
    const BezierPath dot = closed(lines({{30, 30}}));
    const std::tuple<const char*, double, BezierPath, StrokeStyle> cases[] = {
        {"butt", 30 * 6, line, {.width = 6}},
        {"thin", 30 * 0.25, line, {.width = 0.25}},
        {"square", 36 * 6, line, {.width = 6, .cap = LineCap::Square}},
        {"round", 30 * 6 + kPi * 9, line, {.width = 6, .cap = LineCap::Round}},
        {"dot", kPi * 100, dot, {.width = 20, .cap = LineCap::Round}},
        {"square dot", 400, dot, {.width = 20, .cap = LineCap::Square}},
        {"no dot", 0, dot, {.width = 20}},
        {"miter", 60 * 6, angle, {.width = 6}},
        {"bevel", 60 * 6 - 4.5, angle, {.width = 6, .join = LineJoin::Bevel}},
        {"round join", 60 * 6 - 9 + kPi * 9 / 4, angle, {.width = 6, .join = LineJoin::Round}},
        {"miter within the limit", 60 * 6, angle, {.width = 6, .miterLimit = 1.42}},
        {"miter beyond the limit", 60 * 6 - 4.5, angle, {.width = 6, .miterLimit = 1.41}},
        {"closed",
         44 * 44 - 36 * 36,
         pathOf([](BezierPath& path) {
             path.appendRect({{10, 10}, {40, 40}});
         }),
         {.width = 4}},
        {"circle",
         kPi * (22 * 22 - 18 * 18),
         pathOf([](BezierPath& path) {
             path.appendOvalInRect({{10, 10}, {40, 40}});
         }),
         {.width = 4}},
        {"dashes", (5 + 5 + 5 + 3) * 6, line, {.width = 6, .dashes = {5, 4}}},
        {"dashes from a phase",
         (3 + 5 + 5 + 5) * 6,
         line,
         {.width = 6, .dashes = {5, 4}, .dashPhase = 2}},
        {"dashes from a negative phase",
         (5 + 5 + 5 + 1) * 6,
         line,
         {.width = 6, .dashes = {5, 4}, .dashPhase = -2 - 9}},
        {"an odd number of dashes", 4 * 4 * 6, line, {.width = 6, .dashes = {4}}},
        {"round dashes of no length",
         4 * kPi * 9,
         line,
         {.width = 6, .cap = LineCap::Round, .dashes = {0, 9}}},
        {"dashes of no length", 30 * 6, line, {.width = 6, .dashes = {0, 0}}},
        {"too many dashes", 30 * 6, line, {.width = 6, .dashes = {1e-12, 1e-12}}},
        {"a negative dash", 30 * 6, line, {.width = 6, .dashes = {5, -4}}},
        {"width of zero", 0, line, {.width = 0}},
        {"infinite width", 0, line, {.width = HUGE_VAL}},
    };
    for (const auto& [name, area, path, style] : cases)
        expectArea(name, area, [&line = path, &style = style](Canvas& canvas) {
            canvas->strokePath(line, style, kBlack, kOver);
        });
}

/// Every operation that draws, in an area of about 40 x 40 points around the origin.
struct Drawing {
    const char* name;
    std::function<void(GraphicsContext&)> draw;
};

qt::QtImage picture() {
    QImage pixels(8, 8, QImage::Format_ARGB32);
    for (int i = 0; i < 64; ++i)
        pixels.setPixel(i % 8, i / 8, qRgba(i * 4, 255 - i * 4, i % 8 * 30, 255 - i));
    return qt::QtImage(pixels);
}

const Drawing kDrawings[] = {
    {"rectangle",
     [](GraphicsContext& context) {
         context.fillRect({{-16, -8}, {12, 20}}, {1, 0, 0, 0.5}, kOver);
     }},
    {"path",
     [](GraphicsContext& context) {
         context.fillPath(pathOf([](BezierPath& path) {
                              path.appendOvalInRect({{-16, -8}, {12, 20}});
                          }),
                          {1, 0, 0, 1}, kOver);
     }},
    {"stroke",
     [](GraphicsContext& context) {
         context.strokePath(lines({{-12, -8}, {4, 4}, {8, -16}}),
                            {.width = 4, .cap = LineCap::Round, .dashes = {9, 5}}, {0, 1, 0, 1},
                            CompositingOperation::XOR);
     }},
    {"gradient",
     [](GraphicsContext& context) {
         context.fillPathWithGradient(
             pathOf([](BezierPath& path) {
                 path.appendRect({{-16, -8}, {32, 20}});
             }),
             RadialGradient{{-4, 0}, 2, {4, 4}, 16, {{0, {1, 0, 0, 1}}, {1, {0, 0, 1, 0.2}}}},
             kOver);
     }},
    {"image",
     [](GraphicsContext& context) {
         context.drawImage(picture(), {{-16, -8}, {32, 16}}, {{0, 0}, {8, 8}},
                           CompositingOperation::SourceOver, 0.5);
     }},
    {"clip",
     [](GraphicsContext& context) {
         context.clipToPath(pathOf([](BezierPath& path) {
             path.appendOvalInRect({{-16, -8}, {12, 20}});
         }));
         context.fillRect({{-20, -20}, {40, 40}}, {1, 0, 0, 0.5}, kOver);
     }},
    {"text",
     [](GraphicsContext& context) {
         context.drawText(AttributedString("Ab"), {-16, -8});
     }},
    {"text in a rectangle",
     [](GraphicsContext& context) {
         const ParagraphStyle style{TextAlignment::Center, LineBreakMode::Clipping};
         context.drawTextInRect(AttributedString("Clipped", {.paragraphStyle = style}),
                                {{-16, -8}, {32, 16}});
     }},
};

QImage drawn(const Drawing& drawing, double scale,
             const std::function<void(GraphicsContext&)>& move, double side = 48) {
    Canvas canvas(side, side, scale);
    canvas->setShouldSmoothFonts(false);
    move(*canvas.operator->());
    drawing.draw(*canvas.operator->());
    return canvas.image().copy();
}

/// Returns the largest difference between two components, or 256 for different sizes.
int difference(const QImage& one, const QImage& other) {
    int largest = one.size() == other.size() ? 0 : 256;
    for (int y = 0; y < one.height() && largest < 256; ++y)
        for (int x = 0; x < 4 * one.width(); ++x)
            largest =
                std::max(largest, std::abs(one.constScanLine(y)[x] - other.constScanLine(y)[x]));
    return largest;
}

TEST(CoordinateSystems, MoveScaleTurnAndMirrorEveryOperation) {
    const auto center = [](GraphicsContext& context) { context.translateBy(24, 24); };
    for (const Drawing& drawing : kDrawings) {
        SCOPED_TRACE(drawing.name);
        const bool isText = std::string(drawing.name).starts_with("text");
        for (const double scale : kScales) {
            SCOPED_TRACE(scale);
            const QImage plain = drawn(drawing, scale, center);
            QImage blank(plain.size(), plain.format());
            blank.fill(0);
            EXPECT_GT(difference(plain, blank), 99);
            // By scaling instead of a larger canvas.
            EXPECT_LE(difference(drawn(
                                     drawing, 1,
                                     [&](GraphicsContext& context) {
                                         context.scaleBy(scale, scale);
                                         center(context);
                                     },
                                     48 * scale),
                                 plain),
                      1);
            if (isText) // glyphs are hinted only upright
                continue;
            for (const int quarter : {1, 2, 3}) {
                const QImage turned = drawn(drawing, scale, [&](GraphicsContext& context) {
                    center(context);
                    context.rotateByDegrees(90 * quarter);
                });
                EXPECT_LE(difference(turned, plain.transformed(QTransform().rotate(-90 * quarter))),
                          2)
                    << quarter;
            }
            const QImage mirrored = drawn(drawing, scale, [&](GraphicsContext& context) {
                center(context);
                context.scaleBy(-1, 1);
            });
            EXPECT_LE(difference(mirrored, plain.mirrored(true, false)), 2);
        }
    }
}

TEST(Gradients, InterpolatePremultipliedColoursBetweenTheirStops) {
    const Color red{1, 0, 0, 1};
    const Color blue{0, 0, 1, 1};
    const GradientStops stops{{0.25, red}, {0.75, blue}};
    const LinearGradient across{{10, 0}, {50, 0}, stops};
    const RadialGradient around{{30, 30}, 4, {30, 30}, 24, stops};
    const RadialGradient cone{{10, 30}, 0, {40, 30}, 10, stops};
    struct Case {
        const char* name;
        Gradient gradient;
        Point point;
        std::array<double, 4> color; ///< premultiplied, 0 to 1
    };
    const Case cases[] = {
        {"before the first stop", across, {5.5, 9.5}, {1, 1, 0, 0}},
        {"a quarter of the way", across, {25.5, 50.5}, {1, 1 - 5.5 / 20, 0, 5.5 / 20}},
        {"after the last stop", across, {55.5, 9.5}, {1, 0, 0, 1}},
        {"diagonal",
         LinearGradient{{0, 0}, {60, 60}, {{0, red}, {1, blue}}},
         {20.5, 39.5},
         {1, 0.5, 0, 0.5}},
        {"to transparent",
         LinearGradient{{0, 0}, {60, 0}, {{0, red}, {1, {1, 1, 1, 0}}}},
         {29.5, 30},
         {30.5 / 60, 30.5 / 60, 0, 0}},
        {"sharp edge",
         LinearGradient{{0, 0}, {60, 0}, {{0.5, red}, {0.1, blue}}},
         {30.5, 9.5},
         {1, 0, 0, 1}},
        {"invalid location",
         LinearGradient{{0, 0}, {60, 0}, {{0, red}, {std::nan(""), blue}}},
         {30.5, 9.5},
         {1, 1, 0, 0}},
        {"one stop", LinearGradient{{0, 0}, {60, 0}, {{0.5, blue}}}, {9.5, 9.5}, {1, 0, 0, 1}},
        {"inside the first circle", around, {31.5, 30.5}, {1, 1, 0, 0}},
        {"between the circles",
         around,
         {30.5, 44.5},
         {1, 1.5 - (std::hypot(0.5, 14.5) - 4) / 10, 0, (std::hypot(0.5, 14.5) - 4) / 10 - 0.5}},
        {"outside of the second circle", around, {3.5, 3.5}, {1, 0, 0, 1}},
        {"outside of the cone", cone, {8.5, 30.5}, {0, 0, 0, 0}},
        {"in the cone", cone, {45.5, 30.5}, {1, 0, 0, 1}},
        {"at the tip of the cone", cone, {12.5, 30.5}, {1, 1, 0, 0}},
        {"circles of the same size",
         RadialGradient{{10, 30}, 5, {40, 30}, 5, stops},
         {30.5, 31.5},
         {1, 0, 0, 1}},
        {"beside circles of the same size",
         RadialGradient{{10, 30}, 5, {40, 30}, 5, stops},
         {30.5, 36.5},
         {0, 0, 0, 0}},
        {"no stops", LinearGradient{{0, 0}, {60, 0}, {}}, {9.5, 9.5}, {}},
        {"no length", LinearGradient{{9, 9}, {9, 9}, stops}, {9.5, 9.5}, {}},
        {"not finite", LinearGradient{{HUGE_VAL, 9}, {9, 9}, stops}, {9.5, 9.5}, {}},
        {"the same circle", RadialGradient{{9, 9}, 5, {9, 9}, 5, stops}, {9.5, 9.5}, {}},
        {"negative radius", RadialGradient{{9, 9}, -5, {9, 9}, 5, stops}, {9.5, 9.5}, {}},
        {"pattern colour",
         LinearGradient{{0, 0}, {60, 0}, {{0, colorWithPatternImage(nullptr)}}},
         {9.5, 9.5},
         {}},
    };
    const BezierPath everything = pathOf([](BezierPath& path) { path.appendRect({{}, {60, 60}}); });
    for (const auto& [name, gradient, point, color] : cases) {
        for (const double scale : kScales) {
            Canvas canvas(60, 60, scale);
            canvas->fillPathWithGradient(everything, gradient, kOver);
            const auto pixel = canvas.at(static_cast<int>(point.x * scale),
                                         static_cast<int>((60 - point.y) * scale));
            // Only at scale 1 is the point the centre of a pixel.
            for (std::size_t i = 0; i < 4; ++i)
                EXPECT_NEAR(pixel[i], 255 * color[i], scale == 1 ? 1 : 7)
                    << name << ' ' << scale << ' ' << i;
        }
    }
}

/// Each way to paint a shape that covers the left half of a pixel at (10, 10) and all pixels to its
/// left, in an opaque colour.
const std::function<void(GraphicsContext&, CompositingOperation)> kHalfPixelPaints[] = {
    [](GraphicsContext& context, CompositingOperation operation) {
        context.fillPath(pathOf([](BezierPath& path) {
                             path.appendRect({{0, 0}, {10.5, 20}});
                         }),
                         {0.2, 0.4, 0.6, 0.8}, operation);
    },
    [](GraphicsContext& context, CompositingOperation operation) {
        context.fillPathWithGradient(pathOf([](BezierPath& path) {
                                         path.appendRect({{0, 0}, {10.5, 20}});
                                     }),
                                     LinearGradient{{0, 0}, {20, 0}, {{0, {0.2, 0.4, 0.6, 0.8}}}},
                                     operation);
    },
    [](GraphicsContext& context, CompositingOperation operation) {
        context.strokePath(lines({{5.25, 0}, {5.25, 20}}), {.width = 10.5}, {0.2, 0.4, 0.6, 0.8},
                           operation);
    },
    [](GraphicsContext& context, CompositingOperation operation) {
        context.clipToPath(pathOf([](BezierPath& path) {
            path.appendRect({{-5, 5}, {15.5, 20}});
        }));
        context.clipToPath(pathOf([](BezierPath& path) { path.appendRect({{0, -5}, {25, 20}}); }));
        context.fillRect({{0, 0}, {20, 20}}, {0.2, 0.4, 0.6, 0.8}, operation);
    },
    [](GraphicsContext& context, CompositingOperation operation) {
        context.rotateByDegrees(90);
        context.fillRect({{0, -10.5}, {20, 10.5}}, {0.2, 0.4, 0.6, 0.8}, operation);
    },
};

TEST(Paths, CombineWithEveryOperationLikeRectangles) {
    for (int number = 0; number <= 14; ++number) {
        const auto operation = static_cast<CompositingOperation>(number);
        Canvas expected(20, 20);
        expected->fillRect({{0, 0}, {20, 20}}, {0.9, 0.5, 0.1, 0.5}, CompositingOperation::Copy);
        expected->fillRect({{0, 0}, {10.5, 20}}, {0.2, 0.4, 0.6, 0.8}, operation);
        for (std::size_t paint = 0; paint < std::size(kHalfPixelPaints); ++paint) {
            Canvas canvas(20, 20);
            canvas->fillRect({{0, 0}, {20, 20}}, {0.9, 0.5, 0.1, 0.5}, CompositingOperation::Copy);
            kHalfPixelPaints[paint](*canvas.operator->(), operation);
            for (const int x : {2, 9, 10, 11})
                for (std::size_t i = 0; i < 4; ++i)
                    EXPECT_NEAR(canvas.at(x, 10)[i], expected.at(x, 10)[i], 1)
                        << number << ": " << paint << " at " << x;
        }
    }
}

TEST(Clips, IntersectAndAreRestored) {
    Canvas canvas(60, 60);
    const auto fill = [&] {
        canvas->fillRect({{0, 0}, {60, 60}}, kBlack, CompositingOperation::Copy);
    };
    canvas->saveGraphicsState();
    canvas->clipToPath(ring(WindingRule::EvenOdd));
    canvas->clipToPath(pathOf([](BezierPath& path) { path.appendRect({{0, 0}, {25, 60}}); }));
    fill();
    EXPECT_NEAR(canvas.coverage(), 600, 0.1);
    EXPECT_EQ(canvas.alphaAt(20, 30), 0);
    EXPECT_EQ(canvas.alphaAt(10, 30), 255);
    canvas->saveGraphicsState();
    canvas->clipToPath({});
    canvas->fillRect({{0, 0}, {60, 60}}, kBlack, CompositingOperation::Clear);
    canvas->drawText(AttributedString("text"), {20, 20});
    EXPECT_NEAR(canvas.coverage(), 600, 0.1);
    canvas->restoreGraphicsState();
    canvas->restoreGraphicsState();
    fill();
    EXPECT_NEAR(canvas.coverage(), 3600, 0.1);
}

TEST(CoordinateSystems, DrawNothingAfterScalingByZeroAndIgnoreInvalidChanges) {
    for (const Drawing& drawing : kDrawings) {
        const auto flatten = [](GraphicsContext& context) {
            context.translateBy(24, 24);
            context.scaleBy(1, 0);
        };
        const auto overflow = [](GraphicsContext& context) {
            context.scaleBy(1e300, 1e300);
            context.scaleBy(1e300, 1e300);
        };
        const QImage nothing = drawn({"", [](GraphicsContext&) {}}, 1, [](GraphicsContext&) {});
        EXPECT_EQ(drawn(drawing, 1, flatten), nothing) << drawing.name;
        EXPECT_EQ(drawn(drawing, 1, overflow), nothing) << drawing.name;
        const auto move = [](GraphicsContext& context) { context.translateBy(24, 24); };
        const auto invalid = [&](GraphicsContext& context) {
            move(context);
            for (const double bad : {std::nan(""), HUGE_VAL}) {
                context.translateBy(bad, 0);
                context.rotateByDegrees(bad);
                context.scaleBy(1, bad);
            }
        };
        EXPECT_EQ(drawn(drawing, 1, invalid), drawn(drawing, 1, move)) << drawing.name;
    }
}

TEST(Paths, AreDrawnWhereTheyAreVisibleIfTheyExtendFarBeyondTheImage) {
    for (const double far : {1e5, 1e9, 1e15, 1e200}) {
        Canvas canvas(60, 60);
        canvas->fillPath(pathOf([&](BezierPath& path) {
                             path.appendRect({{30, -far}, {far, 2 * far}});
                         }),
                         kBlack, kOver);
        EXPECT_NEAR(canvas.coverage(), 1800, 1) << far;
        canvas->strokePath(lines({{-far, 10}, {far, 10}}), {.width = 4}, kBlack,
                           CompositingOperation::Copy);
        EXPECT_NEAR(canvas.coverage(), 1800 + 120, 1) << far;
        canvas->strokePath(lines({{-far, -far}, {far, far}}), {.width = 4, .dashes = {3, 2}},
                           kBlack, CompositingOperation::Copy);
    }
}

} // namespace
