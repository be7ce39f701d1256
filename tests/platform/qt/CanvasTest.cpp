#include "Canvas.h"
#include "platform/base/Exception.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/Truncation.h"
#include "tests/support/RecordingLog.h"
#include "ui/HUDBackground.h"
#include "ui/TintedImage.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <cmath>

using namespace platform;
using platform::qt::QtGraphics;
using platform::qt::QtImage;

namespace {

constexpr auto kOver = CompositingOperation::SourceOver;
constexpr int kTolerance = 6;

/// Returns unpremultiplied red, green, blue and alpha. Coordinates are from the top left.
std::array<int, 4> pixel(const Image& image, int x, int y, double scale = 1) {
    const QColor color = dynamic_cast<const QtImage&>(image).pixelsForScale(scale).pixelColor(x, y);
    return {color.red(), color.green(), color.blue(), color.alpha()};
}

const QImage& pixelsOf(const Image& image) {
    return dynamic_cast<const QtImage&>(image).pixelsForScale(1);
}

MATCHER_P2(IsNear, color, tolerance, "") {
    return std::ranges::equal(
        arg, color, [&](int value, int wanted) { return std::abs(value - wanted) <= tolerance; });
}

class Drawing : public testing::Test {
  protected:
    Drawing() { graphics.setDrawingScale(1); }

    QtGraphics graphics;
    ScopedService<Graphics> service{graphics};
    test::RecordingLog log;
};

TEST_F(Drawing, RoundsTheSizeOfImagesUpToWholePixels) {
    const std::tuple<Size, double, QSize> cases[] = {
        {{100, 50}, 1, {100, 50}},   {{100.7, 50.2}, 1, {101, 51}}, {{100.7, 50.2}, 2, {202, 101}},
        {{0.1 * 3, 1}, 10, {3, 10}}, {{0, 5}, 1, {0, 0}},           {{-4, 5}, 1, {0, 0}},
    };
    for (const auto& [size, scale, pixels] : cases) {
        graphics.setDrawingScale(scale);
        const auto image = graphics.imageByDrawing(
            size, [](GraphicsContext& context) { context.fillRect({}, {}, kOver); });
        EXPECT_EQ(image->size(), size);
        EXPECT_EQ(pixelsOf(*image).size(), pixels);
    }
    EXPECT_TRUE(log.take().empty());
    const auto tooLarge = graphics.imageByDrawing({1e6, 1e6}, [](GraphicsContext& context) {
        context.fillRect({{}, {1e6, 1e6}}, {}, kOver);
    });
    EXPECT_TRUE(pixelsOf(*tooLarge).isNull());
    EXPECT_EQ(log.take().size(), 1U);
    EXPECT_ANY_THROW(graphics.currentContext()) << "drawing has ended";
}

TEST(CornerArc, IsTangentToBothLinesAndNulloptForDegenerateCorners) {
    const auto blunt = cornerArc({0, 0}, {10, 0}, {20, 10}, 3);
    ASSERT_TRUE(blunt);
    EXPECT_NEAR(10 - blunt->start.x, 3 * std::tan(std::acos(-1.0) / 8), 1e-9);
    for (const auto& [from, corner, to, radius] :
         {std::tuple(Point{1, 1}, Point{1, 1}, Point{5, 5}, 6.0),
          std::tuple(Point{1, 1}, Point{5, 5}, Point{5, 5}, 6.0),
          std::tuple(Point{1, 1}, Point{5, 5}, Point{9, 9}, 6.0),
          std::tuple(Point{1, 1}, Point{5, 5}, Point{2, 2}, 6.0),
          std::tuple(Point{0, 0}, Point{5, 0}, Point{5, 5}, 0.0)})
        EXPECT_FALSE(cornerArc(from, corner, to, radius)) << corner.x << ' ' << to.x;
}

/// Returns how much of a pixel is inside a circle, from 0 to 255.
double circleCoverage(double centerX, double centerY, double radius, int x, int y) {
    int hits = 0;
    for (int i = 0; i < 256; ++i)
        hits += std::hypot(x + (i % 16 + 0.5) / 16 - centerX, y + (i / 16 + 0.5) / 16 - centerY) <=
                        radius
                    ? 1
                    : 0;
    return hits * 255 / 256.0;
}

TEST_F(Drawing, DrawsThePanelBackgroundWithOnlyTheOuterCornersRounded) {
    for (const double scale : {1.0, 2.0}) {
        SCOPED_TRACE(scale);
        graphics.setDrawingScale(scale);
        const Size size{100.7, 50};
        const auto image = graphics.imageByDrawing(
            size, [&](GraphicsContext& context) { ui::drawHUDBackground(context, size, ""); });
        const auto unit = static_cast<int>(scale);
        const auto at = [&](int x, int y) { return pixel(*image, x, y, scale); };
        const auto is = [](int white) { return IsNear(std::array{white, white, white, 191}, 1); };
        EXPECT_THAT(at(50 * unit, 10 * unit), is(64));
        EXPECT_THAT(at(50 * unit, 40 * unit), is(26));
        // Title bar and body meet in square corners, without a seam.
        EXPECT_THAT(at(0, 19 * unit - 1), is(64));
        EXPECT_THAT(at(0, 19 * unit), is(26));
        EXPECT_THAT(at(100 * unit - 1, 19 * unit), is(26));
        EXPECT_EQ(at(100 * unit, 25 * unit)[3], 0) << "the fractional point stays transparent";
        for (int y = 0; y < 6 * unit; ++y)
            for (int x = 0; x < 6 * unit; ++x) {
                const double inside = 0.75 * circleCoverage(6 * scale, 6 * scale, 6 * scale, x, y);
                for (const int column : {x, 100 * unit - 1 - x})
                    for (const int row : {y, 50 * unit - 1 - y})
                        EXPECT_NEAR(at(column, row)[3], inside, kTolerance) << column << ' ' << row;
            }
    }
}

/// Returns the bounds of the pixels of the title bar with text on them, or a null rectangle.
QRect titleInk(const Image& image) {
    QRect ink;
    const QImage& pixels = pixelsOf(image);
    for (int y = 0; y < std::min(19, pixels.height()); ++y)
        for (int x = 0; x < pixels.width(); ++x)
            if (pixels.pixelColor(x, y).alpha() > 200)
                ink |= QRect(x, y, 1, 1);
    return ink;
}

TEST_F(Drawing, CentersThePanelTitleOrTruncatesItAtTheMargins) {
    const auto titleBounds = [&](double width, const std::string& title) {
        const Size size{width, 60};
        return titleInk(*graphics.imageByDrawing(
            size, [&](GraphicsContext& context) { ui::drawHUDBackground(context, size, title); }));
    };
    const QRect centered = titleBounds(200, "Clock");
    EXPECT_NEAR(centered.center().x(), 100, 2);
    EXPECT_NEAR(centered.center().y(), 9, 2.5);
    const QRect cut = titleBounds(120, "A title that is much too wide for this panel");
    EXPECT_GE(cut.left(), 19);
    EXPECT_LT(cut.right(), 101);
    EXPECT_GT(cut.width(), 65);
    for (const double width : {38.0, 20.0, 3.0})
        EXPECT_TRUE(titleBounds(width, "Clock").isNull()) << width;
    EXPECT_TRUE(titleBounds(200, "").isNull());
}

TEST(Truncation, CutsBetweenGraphemeClusters) {
    // Each byte is 1 point wide, and so the ellipsis 3.
    const auto measure = [](const AttributedString& text) {
        return Size{static_cast<double>(text.length()), 10};
    };
    const std::string accented = "e\u0301"; // three bytes, one character
    const std::tuple<std::string, double, std::string> cases[] = {
        {"short", 5, "short"},
        {"somewhat longer", 9, "somewh\u2026"},
        {"ab" + accented + "cdef", 7, "ab\u2026"},
        {"ab" + accented + "cdef", 8, "ab" + accented + "\u2026"},
        {"nothing fits", 2.9, ""},
        {"bare ellipsis", 3, "\u2026"},
        {std::string(1 << 22, 'x'), 8, "xxxxx\u2026"},
    };
    for (const auto& [text, width, expected] : cases)
        EXPECT_EQ(qt::truncatedToWidth(AttributedString(text), width, measure).string(), expected);

    AttributedString twoFonts("abcdefgh");
    TextAttributes bold;
    bold.font = Font{"", 0, true};
    twoFonts.setAttributes(bold, 2, 6);
    const auto cut = qt::truncatedToWidth(twoFonts, 7, measure);
    EXPECT_EQ(cut.string(), "abcd\u2026");
    EXPECT_EQ(cut.attributesAt(1), TextAttributes());
    EXPECT_EQ(cut.attributesAt(cut.length() - 1), bold);
}

TEST_F(Drawing, TintsVisiblePixelsAndLeavesTheReceiverUnchanged) {
    QImage icon(2, 1, QImage::Format_ARGB32);
    icon.setPixel(0, 0, qRgba(0, 0, 255, 128));
    icon.setPixel(1, 0, qRgba(0, 0, 0, 0));
    const QtImage image(icon);
    const auto red = HalvexTintedImage::tintedImageWithColor(image, {1, 0, 0, 1});
    EXPECT_THAT(pixel(*red, 0, 0), IsNear(std::array{64, 0, 191, 128}, 2));
    EXPECT_EQ(pixel(*red, 1, 0)[3], 0);
    const auto pattern = colorWithPatternImage(std::make_shared<QtImage>(icon));
    const auto plain = HalvexTintedImage::tintedImageWithColor(image, pattern);
    EXPECT_EQ(pixelsOf(*plain), pixelsOf(image)) << "a pattern colour does not tint";
    EXPECT_EQ(pixelsOf(image), QtImage(icon).pixelsForScale(1)) << "the receiver does not change";
    const auto nothing = HalvexTintedImage::tintedImageWithColor(QtImage(QImage()), {1, 0, 0, 1});
    EXPECT_EQ(nothing->size(), Size());
}

TEST(QtGraphics, DrawsIntoTheInnermostContextAndThrowsWithoutOne) {
    test::Canvas outer(4, 4);
    QImage inner(4, 4, QImage::Format_ARGB32_Premultiplied);
    inner.fill(Qt::transparent);
    const auto fill = [&](double x) {
        outer.graphics().currentContext().fillRect({{x, 0}, {1, 4}}, Color{1, 0, 0, 1},
                                                   CompositingOperation::Copy);
    };
    fill(0);
    {
        const qt::ScopedContext innerScope(outer.graphics(), inner, {4, 4}, 1);
        fill(1);
    }
    fill(2);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(outer.alphaAt(x, 0) != 0, x == 0 || x == 2) << x;
        EXPECT_EQ(qAlpha(inner.pixel(x, 0)) != 0, x == 1) << x;
    }
    EXPECT_THROW(QtGraphics().currentContext(), Exception);
}

TEST(QtGraphics, DrawsIntoImagesOfAnyFormatAndPixelRatioWithoutChangingCopies) {
    QtGraphics graphics;
    QImage target(80, 40, QImage::Format_RGB32);
    target.fill(Qt::white);
    target.setDevicePixelRatio(2);
    const QImage before = target;
    const qt::ScopedContext scope(graphics, target, {40, 20}, 2);
    graphics.currentContext().fillRect({{0, 0}, {10, 10}}, Color{1, 0, 0, 1},
                                       CompositingOperation::SourceOver);
    EXPECT_EQ(before.pixelColor(5, 30), QColor(Qt::white));
    EXPECT_EQ(target.pixelColor(5, 30), QColor(Qt::red));
    EXPECT_EQ(target.pixelColor(25, 30), QColor(Qt::white));
    EXPECT_EQ(target.devicePixelRatio(), 2);
}

TEST(QtGraphics, RestoresSavedSettingsInReverseOrder) {
    test::Canvas canvas(60, 20);
    const auto draw = [&] {
        canvas->fillRect({{0, 0}, {60, 20}}, {1, 1, 0, 0.5}, CompositingOperation::Copy);
        canvas->drawText(AttributedString("state"), {4, 2});
        return canvas.image().copy();
    };
    canvas->restoreGraphicsState();
    const QImage plain = draw();
    canvas->saveGraphicsState();
    canvas->setCompositingOperation(CompositingOperation::XOR);
    const QImage cutOut = draw();
    canvas->saveGraphicsState();
    canvas->setShadow({3, 3}, 2);
    const QImage shaded = draw();
    canvas->saveGraphicsState();
    canvas->setTextDrawingMode(TextDrawingMode::Invisible);
    const QImage last = draw();
    EXPECT_TRUE(plain != cutOut && cutOut != shaded && shaded != last);
    for (const QImage& picture : {shaded, cutOut, plain}) {
        canvas->restoreGraphicsState();
        EXPECT_EQ(draw(), picture);
    }
}

} // namespace
