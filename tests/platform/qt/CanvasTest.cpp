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

const QImage& pixelsOf(const Image& image, double scale = 1) {
    return dynamic_cast<const QtImage&>(image).pixelsForScale(scale);
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

TEST_F(Drawing, DrawsThePanelBackgroundWithOnlyTheOuterCornersRounded) {
    for (const double scale : {1.0, 2.0}) {
        SCOPED_TRACE(scale);
        graphics.setDrawingScale(scale);
        const Size size{100.7, 50};
        const auto image = graphics.imageByDrawing(
            size, [&](GraphicsContext& context) { ui::drawHUDBackground(context, size, ""); });
        const auto unit = static_cast<int>(scale);
        const auto at = [&](int x, int y) { return pixelsOf(*image, scale).pixelColor(x, y); };
        // Title bar and body meet in square corners, without a seam.
        for (const auto& [x, y, white] : {std::tuple(50, 10 * unit, 64),
                                          {50, 40 * unit, 26},
                                          {0, 19 * unit - 1, 64},
                                          {0, 19 * unit, 26},
                                          {99, 19 * unit, 26}}) {
            EXPECT_NEAR(at(x * unit, y).red(), white, 1) << x << ' ' << y;
            EXPECT_NEAR(at(x * unit, y).alpha(), 191, 1) << x << ' ' << y;
        }
        EXPECT_EQ(at(100 * unit, 25 * unit).alpha(), 0) << "the fractional point is transparent";
        // The diagonal crosses the outline 1.76 points from the edges.
        for (const auto& [distance, alpha] : {std::pair(2 * unit - 2, 0), {2 * unit, 191}})
            for (const int column : {distance, 100 * unit - 1 - distance})
                for (const int row : {distance, 50 * unit - 1 - distance})
                    EXPECT_NEAR(at(column, row).alpha(), alpha, 1) << column << ' ' << row;
    }
}

TEST(QtGraphics, CentersTextInARectangleOrTruncatesItToItsWidth) {
    const auto ink = [](double width, const std::string& text) {
        test::Canvas canvas(200, 19);
        const ParagraphStyle style{TextAlignment::Center, LineBreakMode::TruncatingTail};
        canvas->drawTextInRect(AttributedString(text, {.paragraphStyle = style}),
                               {{19, 0}, {width, 19}});
        return canvas.ink();
    };
    const QRect centered = ink(162, "Clock");
    EXPECT_NEAR(centered.center().x(), 100, 2);
    EXPECT_NEAR(centered.center().y(), 9, 2.5);
    const QRect cut = ink(82, "A title that is much too wide for this panel");
    EXPECT_GE(cut.left(), 19);
    EXPECT_LT(cut.right(), 101);
    EXPECT_GT(cut.width(), 65);
    for (const double width : {0.0, -18.0, -35.0})
        EXPECT_TRUE(ink(width, "Clock").isNull()) << width;
    EXPECT_TRUE(ink(162, "").isNull());
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

TEST_F(Drawing, DoesNotTintWithAPatternColour) {
    QImage icon(2, 1, QImage::Format_ARGB32);
    icon.fill(QColor(0, 0, 255, 128));
    const auto pattern = colorWithPatternImage(std::make_shared<QtImage>(icon));
    const auto tinted = HalvexTintedImage::tintedImageWithColor(QtImage(icon), pattern);
    EXPECT_EQ(pixelsOf(*tinted), QtImage(icon).pixelsForScale(1));
    const auto empty = HalvexTintedImage::tintedImageWithColor(QtImage(QImage()), {1, 0, 0, 1});
    EXPECT_EQ(empty->size(), Size());
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
    const std::function<void()> changes[] = {
        [&] { canvas->setCompositingOperation(CompositingOperation::XOR); },
        [&] {
            canvas->setShadow({3, 3}, 2);
        },
        [&] { canvas->setTextDrawingMode(TextDrawingMode::Invisible); },
    };
    canvas->restoreGraphicsState(); // without a saved state
    std::vector<QImage> pictures{draw()};
    for (const auto& change : changes) {
        canvas->saveGraphicsState();
        change();
        pictures.push_back(draw());
        EXPECT_NE(pictures.back(), pictures.end()[-2]);
    }
    for (; pictures.size() > 1; pictures.pop_back()) {
        EXPECT_EQ(draw(), pictures.back());
        canvas->restoreGraphicsState();
    }
    EXPECT_EQ(draw(), pictures.front());
}

} // namespace
