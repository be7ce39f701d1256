#include "Canvas.h"
#include "platform/qt/QtImage.h"
#include "ui/TintedImage.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>

using namespace platform;
using test::Canvas;

namespace {

/// A premultiplied component of source and destination, and their alphas, from 0 to 1.
struct Inputs {
    double s, sa, d, da;
};

/// The component of the result, indexed by operation number.
const std::array<double (*)(Inputs), 14> kFormulas = {
    [](Inputs) { return 0.0; },
    [](Inputs p) { return p.s; },
    [](Inputs p) { return p.s + p.d * (1 - p.sa); },
    [](Inputs p) { return p.s * p.da; },
    [](Inputs p) { return p.s * (1 - p.da); },
    [](Inputs p) { return p.s * p.da + p.d * (1 - p.sa); },
    [](Inputs p) { return p.s * (1 - p.da) + p.d; },
    [](Inputs p) { return p.d * p.sa; },
    [](Inputs p) { return p.d * (1 - p.sa); },
    [](Inputs p) { return p.s * (1 - p.da) + p.d * p.sa; },
    [](Inputs p) { return p.s * (1 - p.da) + p.d * (1 - p.sa); },
    [](Inputs p) {
        return std::max(0.0, std::min(1.0, p.sa + p.da) - ((p.sa - p.s) + (p.da - p.d)));
    },
    [](Inputs p) { return p.s + p.d * (1 - p.sa); },
    [](Inputs p) { return std::min(1.0, p.s + p.d); },
};

const std::array kColors = {
    Color{1, 0, 0, 1},       Color{0.2, 0.4, 0.6, 1},   Color{1, 1, 1, 1},
    Color{0.8, 0.6, 0, 0.5}, Color{0.1, 0.9, 0.3, 0.2}, Color{0, 0, 0, 0},
};

platform::qt::QtImage plainImage(const Color& color) {
    QImage pixels(4, 4, QImage::Format_ARGB32);
    pixels.fill(QColor::fromRgbF(static_cast<float>(color.red), static_cast<float>(color.green),
                                 static_cast<float>(color.blue), static_cast<float>(color.alpha)));
    return platform::qt::QtImage(pixels);
}

/// Returns the result of an operation with the source at an opacity of @p fraction.
std::array<double, 4> expected(std::size_t number, const Color& source,
                               const std::array<int, 4>& before, double fraction = 1) {
    const double sa = source.alpha * fraction;
    const double da = before[0] / 255.0;
    const std::array<double, 4> s = {sa, source.red * sa, source.green * sa, source.blue * sa};
    std::array<double, 4> result{};
    for (std::size_t i = 0; i < 4; ++i)
        result[i] = 255 * kFormulas[number]({s[i], sa, before[i] / 255.0, da});
    // PlusDarker has another formula for alpha.
    if (number == 11)
        result[0] = 255 * std::min(1.0, sa + da);
    return result;
}

/// Returns the components of a pixel of the tinted image.
std::array<int, 4> tinted(const platform::Image& image, const Color& color,
                          CompositingOperation operation) {
    platform::qt::QtGraphics graphics;
    const ScopedService<Graphics> service(graphics);
    const auto result = HalvexTintedImage::tintedImageWithColor(image, color, operation);
    Canvas canvas(4, 4);
    canvas->drawImage(*result, {{0, 0}, {4, 4}}, {{0, 0}, {4, 4}}, CompositingOperation::Copy, 1);
    return canvas.at(2, 2);
}

void expectNear(const std::array<int, 4>& actual, const std::array<double, 4>& wanted,
                double tolerance) {
    for (std::size_t i = 0; i < 4; ++i)
        EXPECT_NEAR(actual[i], wanted[i], tolerance) << "component " << i << " of argb";
}

} // namespace

TEST(Compositing, FollowsTheFormulaOfEachOperationForRectanglesImagesAndTints) {
    for (std::size_t number = 0; number < kFormulas.size(); ++number) {
        const auto operation = static_cast<CompositingOperation>(number);
        for (const Color& ground : kColors) {
            for (const Color& source : kColors) {
                SCOPED_TRACE(testing::Message() << number << ": " << source.red << "/"
                                                << source.alpha << " on " << ground.red);
                Canvas canvas(13, 4);
                canvas->fillRect({{0, 0}, {13, 4}}, ground, CompositingOperation::Copy);
                const auto before = canvas.at(0, 0);
                canvas->fillRect({{0, 0}, {5, 4}}, source, operation);
                const auto image = plainImage(source);
                canvas->drawImage(image, {{5, 0}, {4, 4}}, {{0, 0}, {4, 4}}, operation, 1);
                canvas->drawImage(image, {{9, 0}, {4, 4}}, {{0, 0}, {4, 4}}, operation, 0.5);
                for (const int x : {1, 4, 6}) // filled with four others, filled alone, of an image
                    expectNear(canvas.at(x, 1), expected(number, source, before), 1);
                expectNear(canvas.at(10, 1), expected(number, source, before, 0.5), 1);
                expectNear(tinted(plainImage(ground), source, operation),
                           expected(number, source, before), 1);
            }
        }
    }
}

TEST(Compositing, ChangesPixelsInProportionToTheirCoverage) {
    const Color source{1, 0.5, 0, 0.5};
    platform::BezierPath path;
    path.moveToPoint({2, 3});
    for (const platform::Point corner : {platform::Point{6, 3}, {6, 6.5}, {2, 6.5}})
        path.lineToPoint(corner);
    for (std::size_t number = 0; number < kFormulas.size(); ++number) {
        const auto operation = static_cast<CompositingOperation>(number);
        SCOPED_TRACE(number);
        Canvas canvas(10, 30);
        canvas->fillRect({{0, 0}, {10, 30}}, {0.5, 0.25, 1, 0.5}, CompositingOperation::Copy);
        const auto before = canvas.at(0, 0);
        // The first row of pixels is half covered.
        canvas->fillRect({{2, 23}, {4, 3.5}}, source, operation);
        canvas->drawImage(plainImage(source), {{2, 13}, {4, 3.5}}, {{0, 0}, {4, 4}}, operation, 1);
        canvas->fillPath(path, source, operation);
        const auto inside = expected(number, source, before);
        auto half = inside;
        for (std::size_t i = 0; i < 4; ++i)
            half[i] = (inside[i] + before[i]) / 2;
        for (const int top : {3, 13, 23}) {
            for (const auto& [x, y] : {std::pair{1, 1}, {6, 1}, {3, -1}, {3, 4}})
                EXPECT_EQ(canvas.at(x, top + y), before) << x << ", " << y;
            expectNear(canvas.at(3, top + 2), inside, 1);
            expectNear(canvas.at(3, top), half, 1.5);
        }
    }
}

TEST(Compositing, DrawsNothingForInvalidArguments) {
    Canvas canvas(4, 4);
    const auto image = plainImage({1, 1, 1, 1});
    for (const double width : {std::nan(""), HUGE_VAL, -2.0}) {
        const platform::Rect rect{{1, 0}, {width, 2}};
        canvas->fillRect(rect, {0, 0, 0, 1}, CompositingOperation::Copy);
        canvas->drawImage(image, rect, {{0, 0}, {4, 4}}, CompositingOperation::Copy, 1);
        canvas->drawImage(image, {{0, 0}, {4, 4}}, rect, CompositingOperation::Copy, 1);
    }
    canvas->fillRect({{0, 0}, {4, 4}}, {0, 0, 0, 1}, static_cast<CompositingOperation>(14));
    EXPECT_EQ(canvas.coverage(), 0);
}
