#include "Canvas.h"
#include "platform/Graphics.h"
#include "platform/base/Exception.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <QFontInfo>

#include <deque>
#include <string>

using namespace platform;
using test::Canvas;
using testing::ElementsAre;

namespace {

TextAttributes inFont(std::string family, double size, bool bold = false) {
    return {Font{std::move(family), size, bold}, {}, {}};
}

/// Returns text of two full blocks.
AttributedString block(std::optional<Shadow> shadow, const Color& color = {1, 0, 0, 1}) {
    return AttributedString("\u2588\u2588", {.foregroundColor = color, .shadow = shadow});
}

/// Returns the centre of mass of the alpha.
QPointF center(Canvas& canvas) {
    QPointF sum;
    for (int y = 0; y < canvas.image().height(); ++y)
        for (int x = 0; x < canvas.image().width(); ++x)
            sum += QPointF(x, y) * (canvas.alphaAt(x, y) / 255.0);
    return sum / canvas.coverage();
}

} // namespace

TEST(Text, IsDrawnUprightWithTheLowerLeftCornerOfItsBoxAtThePoint) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        SCOPED_TRACE(scale);
        Canvas canvas(60, 40, scale);
        const AttributedString text("LLL");
        const Size box = canvas.graphics().sizeOfText(text);
        canvas->drawText(text, {10, 12});
        const QRect ink = canvas.ink();
        const double bottom = 28 * scale;
        EXPECT_NEAR(ink.left(), 10 * scale, 2 * scale);
        EXPECT_NEAR(ink.width(), box.width * scale, 3 * scale);
        // Only the foot of an L is wide; the descent is below it.
        const auto row = [&](int y) { return canvas.coverage(QRect(0, y, ink.right() + 1, 1)); };
        EXPECT_GT(row(ink.bottom()), 1.8 * row(ink.top() + 2));
        EXPECT_NEAR(bottom - ink.bottom() - 1, 0.236 * 14 * scale, 1 + scale / 2);
    }
}

TEST(Text, IsMeasuredByAdvanceWidthAndAscentPlusDescent) {
    Canvas canvas(60, 20);
    const auto size = [&](const std::string& text, double points = 0, bool bold = false) {
        return canvas.graphics().sizeOfText(AttributedString(text, inFont("", points, bold)));
    };
    const Size normal = size("abc");
    const Size large = size("abc", 28);
    EXPECT_EQ(canvas.graphics().sizeOfText(AttributedString("abc")), normal);
    EXPECT_EQ(size(""), Size{});
    EXPECT_NEAR(size("abcabc").width, 2 * normal.width, 0.1);
    EXPECT_GT(size("abc ").width, normal.width);
    EXPECT_EQ(size("a\nb\tc\xE2\x80\xA8z"), size("a b c z"));
    EXPECT_NEAR(large.width, 2 * normal.width, 0.1);
    EXPECT_NEAR(large.height, 2 * normal.height, 0.5);
    EXPECT_GT(size("abc", 0, true).width, normal.width);
    EXPECT_EQ(size("abc", 1e30), size("abc", 1024));
    EXPECT_EQ(size("abc", std::nan("")), normal);

    AttributedString mixed("abcabc");
    mixed.setAttributes(inFont("", 28), 3, 3);
    const Size both = canvas.graphics().sizeOfText(mixed);
    EXPECT_NEAR(both.width, 3 * normal.width, 0.2);
    EXPECT_EQ(both.height, large.height);
}

TEST(Text, IsLaidOutOnceIfAFullBarOfItemsIsMeasuredBeforeItIsDrawn) {
    qt::TextLineCache cache;
    const auto line = [&](int item) {
        return cache.line(AttributedString("item " + std::to_string(item)), QFont(),
                          qt::FontSmoothing::Greyscale);
    };
    std::vector<std::shared_ptr<const qt::TextLine>> measured;
    for (int item = 0; item < 12; ++item)
        measured.push_back(line(item));
    for (int item = 0; item < 12; ++item)
        EXPECT_EQ(line(item), measured[static_cast<std::size_t>(item)]) << item;
}

TEST(Text, ChangesOnlyTheGlyphsPixelsWithEveryOperation) {
    const AttributedString text("Xor 8", {{}, platform::Color{1, 0, 0, 1}, {}});
    Canvas glyphs(60, 20);
    glyphs->drawText(text, {5, 2});
    for (int number = 0; number < 14; ++number) {
        Canvas canvas(60, 20);
        canvas->fillRect({{0, 0}, {60, 20}}, {0, 0, 1, 0.5}, CompositingOperation::Copy);
        const auto before = canvas.at(0, 0);
        canvas->setCompositingOperation(static_cast<CompositingOperation>(number));
        canvas->drawText(text, {5, 2});
        for (int y = 0; y < 20; ++y)
            for (int x = 0; x < 60; ++x) {
                const double shape = glyphs.alphaAt(x, y) / 255.0;
                ASSERT_TRUE(shape > 0 || canvas.at(x, y) == before) << number << ": " << x;
                if (number != 10)
                    continue;
                // With opaque red on a translucent background.
                ASSERT_NEAR(canvas.at(x, y)[3], (1 - shape) * before[3], 1.1);
                ASSERT_NEAR(canvas.at(x, y)[1], shape * (255 - before[0]), 1.1);
            }
    }
}

TEST(Text, IsFilledAndOutlinedAccordingToTheDrawingMode) {
    std::deque<Canvas> canvases;
    for (const auto mode : {TextDrawingMode::Fill, TextDrawingMode::Stroke,
                            TextDrawingMode::FillStroke, TextDrawingMode::Invisible}) {
        Canvas& canvas = canvases.emplace_back(60, 60);
        canvas->setTextDrawingMode(mode);
        canvas->setShadow({0, 0}, mode == TextDrawingMode::Invisible ? 4 : 0);
        canvas->drawText(AttributedString("\u2588", inFont("", 40)), {10, 10});
    }
    const QRect box = canvases[0].ink();
    const QRect middle = box.adjusted(5, 5, -5, -5);
    const double area = middle.width() * middle.height();
    for (const auto& [mode, inside] : {std::pair{0, area}, {1, 0.0}, {2, area}, {3, 0.0}})
        EXPECT_NEAR(canvases[static_cast<std::size_t>(mode)].coverage(middle), inside, 0.1) << mode;
    EXPECT_GT(canvases[1].coverage(), 2 * box.width());
    EXPECT_GT(canvases[2].coverage(), canvases[0].coverage());
    EXPECT_EQ(canvases[3].coverage(), 0);
}

TEST(Text, IsDrawnInEveryScriptAndFromMalformedUtf8) {
    for (const std::string text :
         {"\xFF\xFE", "a\xC3", "مرحبا", "😀👩‍👩‍👧", "e\u0301\u0301"}) {
        SCOPED_TRACE(text);
        Canvas canvas(200, 30);
        AttributedString cut(text);
        cut.setAttributes(inFont("", 16), 1, text.size() - 1);
        canvas->drawText(cut, {20, 5});
        EXPECT_GT(canvas.coverage(), 3);
        EXPECT_GE(canvas.ink().left(), 18);
        EXPECT_LE(canvas.ink().right(), 22 + canvas.graphics().sizeOfText(cut).width);
    }
    Canvas canvas(10, 10);
    canvas->drawText(AttributedString("a"), {std::nan(""), 0});
    EXPECT_EQ(canvas.coverage(), 0);
}

TEST(Text, ThrowsForAttributesBeyondTheEnd) {
    AttributedString text("abc");
    text.addShadow({}, 3, 0);
    EXPECT_THROW(text.addShadow({}, 4, 0), platform::Exception);
    EXPECT_THROW(text.setAttributes({}, 2, static_cast<std::size_t>(-1)), platform::Exception);
    EXPECT_EQ(text, AttributedString("abc"));
}

TEST(Text, LogsAMissingFontOncePerFamilyAndUsesAnother) {
    test::RecordingLog log;
    Canvas canvas(60, 20);
    for (const double size : {12, 13})
        for (const char* family : {"", "dejavu sans", "sans-serif", "Nowhere One", "Nowhere Two"})
            canvas->drawText(AttributedString("abc", inFont(family, size)), {0, 2});
    EXPECT_GT(canvas.coverage(), 0);
    QFont missing(QStringLiteral("Nowhere One"));
    const std::string found = QFontInfo(missing).family().toStdString();
    EXPECT_THAT(log.take(), ElementsAre("font Nowhere One not found: using " + found,
                                        "font Nowhere Two not found: using " + found));
}

TEST(TextShadow, IsMovedByItsOffsetAndKeepsItsTotalAlpha) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        Canvas text(120, 100, scale);
        text->drawText(block({}), {40, 40});
        for (const auto& [x, y, blurRadius] :
             {std::array{30.0, 0.0, 0.0}, {0, 30, 1.5}, {-30, -30, 5}, {1, -1, 10}}) {
            SCOPED_TRACE(testing::Message() << scale << ": " << x << " " << y);
            // The text itself is outside of the canvas.
            Canvas shadow(120, 100, scale);
            shadow->drawText(block(Shadow{{x + 1000, y}, blurRadius, {0, 0, 0, 1}}), {-960, 40});
            EXPECT_NEAR(shadow.coverage(), text.coverage(), text.coverage() * 0.02);
            const QPointF distance = center(shadow) - center(text);
            EXPECT_NEAR(distance.x(), x * scale, 0.3);
            EXPECT_NEAR(distance.y(), -y * scale, 0.55) << "baselines are rounded to whole pixels";
        }
    }
}

TEST(TextShadow, HasTheProfileOfAGaussian) {
    // The blurred edge of a wide block is the integral of the Gaussian.
    const auto draw = [](Canvas& canvas, double blurRadius) {
        const Shadow shadow{{1000, 0}, blurRadius, {0, 0, 0, 1}};
        const TextAttributes attributes{Font{"", 80, false}, Color{}, shadow};
        canvas->drawText(AttributedString("\u2588\u2588", attributes), {50 - 1000, 0});
    };
    Canvas sharp(200, 100);
    draw(sharp, 0);
    const double edge = 80 - sharp.coverage(QRect(0, 50, 80, 1));
    for (const double deviation : {0.75, 2.5, 6.0}) {
        Canvas canvas(200, 100);
        draw(canvas, 2 * deviation);
        for (int x = 30; x < 70; ++x) {
            const double distance = (edge - (x + 0.5)) / deviation;
            EXPECT_NEAR(canvas.alphaAt(x, 50), 255 * 0.5 * std::erfc(distance / std::sqrt(2.0)), 6)
                << deviation << " at " << x;
        }
    }
}

TEST(TextShadow, IsNotDrawnIfItIsInvisibleOrNotFinite) {
    Canvas plain(120, 100);
    plain->drawText(block({}), {40, 40});
    const double nan = std::nan("");
    for (const Shadow& shadow :
         {Shadow{{20, 20}, 5, {0, 0, 0, 0}}, Shadow{{nan, 0}, 5, {}}, Shadow{{0, 0}, nan, {}},
          Shadow{{5000, 0}, 5, {}}, Shadow{{1e300, 1e300}, 1e300, {}}}) {
        Canvas canvas(120, 100);
        canvas->drawText(block(shadow), {40, 40});
        EXPECT_EQ(canvas.image(), plain.image()) << shadow.offset.width;
    }
}

TEST(Text, HasTheColourAndShadowOfItsRunsOrElseOfTheContext) {
    Canvas canvas(120, 100);
    canvas->setShadow({0, 30}, 0);
    AttributedString text("\u2588\u2588\u2588\u2588", {{}, Color{1, 0, 0, 1}, {}});
    text.setAttributes({{}, Color{0, 0, 1, 0.5}, {}}, 6, 3);
    text.setAttributes({}, 9, 3);
    text.addShadow({{0, -30}, 0, {0, 1, 0, 1}}, 9, 3);
    const double width = canvas.graphics().sizeOfText(text).width;
    canvas->drawText(text, {40, 40});
    const auto pixel = [&](double part, double y) {
        return canvas.image().pixelColor(static_cast<int>(40 + width * part),
                                         static_cast<int>(100 - y));
    };
    EXPECT_EQ(pixel(0.125, 47), QColor(Qt::red));
    EXPECT_EQ(pixel(0.625, 47), QColor(0, 0, 255, 128));
    EXPECT_EQ(pixel(0.875, 47), QColor(Qt::black)) << "the colour of the context";
    EXPECT_EQ(pixel(0.125, 77), QColor(0, 0, 0, 85)) << "the shadow of the context";
    EXPECT_EQ(pixel(0.875, 17), QColor(0, 255, 0, 255));
    for (const auto& [part, y] : {std::pair{0.875, 77}, {0.125, 17}})
        EXPECT_EQ(pixel(part, y).alpha(), 0) << part;
}

TEST(TextShadow, IsDrawnBelowTheTextWithTheCurrentOperationAndTheTextsOpacity) {
    const auto pixel = [](CompositingOperation operation, double ground, double opacity, double y) {
        Canvas canvas(120, 100);
        canvas->fillRect({{0, 0}, {120, 100}}, {1, 1, 1, ground}, CompositingOperation::Copy);
        canvas->setCompositingOperation(operation);
        canvas->drawText(block(Shadow{{0, y}, 0, {0, 0, 0, 1}}, {1, 0, 0, opacity}), {40, 40});
        return canvas.at(46, 100 - 47 - static_cast<int>(y));
    };
    EXPECT_EQ(pixel(CompositingOperation::SourceOver, 1, 1, 0), (std::array{255, 255, 0, 0}));
    EXPECT_EQ(pixel(CompositingOperation::SourceOver, 1, 1, 30), (std::array{255, 0, 0, 0}));
    EXPECT_EQ(pixel(CompositingOperation::XOR, 1, 1, 30), (std::array{0, 0, 0, 0}));
    EXPECT_NEAR(pixel(CompositingOperation::SourceOver, 0, 0.5, 30)[0], 128, 1);
}
