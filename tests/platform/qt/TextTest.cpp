#include "Canvas.h"
#include "platform/Exception.h"
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

} // namespace

TEST(Text, StandsUprightWithItsBoxsLowerLeftCornerAtThePoint) {
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
        // Only the foot of an L is broad, and what lies below the foot is the descent.
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

TEST(Text, ChangesOnlyTheGlyphsPixelsWhateverTheOperation) {
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
                // Opaque red: the ground leaves as the glyph comes, less where it was.
                ASSERT_NEAR(canvas.at(x, y)[3], (1 - shape) * before[3], 1.1);
                ASSERT_NEAR(canvas.at(x, y)[1], shape * (255 - before[0]), 1.1);
            }
    }
}

TEST(Text, IsFilledOutlinedOrBothAsTheModeSays) {
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
        EXPECT_NEAR(canvases[mode].coverage(middle), inside, 0.1) << mode;
    EXPECT_GT(canvases[1].coverage(), 2 * box.width());
    EXPECT_GT(canvases[2].coverage(), canvases[0].coverage());
    EXPECT_EQ(canvases[3].coverage(), 0);
}

TEST(Text, OfAnyKindIsDrawn) {
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

TEST(Text, RefusesAttributesBeyondItsEnd) {
    AttributedString text("abc");
    text.addShadow({}, 3, 0);
    EXPECT_THROW(text.addShadow({}, 4, 0), platform::Exception);
    EXPECT_THROW(text.setAttributes({}, 2, static_cast<std::size_t>(-1)), platform::Exception);
    EXPECT_EQ(text, AttributedString("abc"));
}

TEST(Text, InAMissingFontIsLoggedOncePerFamilyAndDrawn) {
    test::RecordingLog log;
    Canvas canvas(60, 20);
    for (const double size : {12, 13})
        for (const char* family : {"", "dejavu sans", "sans-serif", "Nowhere One", "Nowhere Two"})
            canvas->drawText(AttributedString("abc", inFont(family, size)), {0, 2});
    EXPECT_GT(canvas.coverage(), 0);
    QFont missing(QStringLiteral("Nowhere One"));
    const std::string found = QFontInfo(missing).family().toStdString();
    EXPECT_THAT(log.take(), ElementsAre("font Nowhere One is missing, drawing with " + found,
                                        "font Nowhere Two is missing, drawing with " + found));
}
