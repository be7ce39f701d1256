#include "Canvas.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <QFontInfo>

#include <cstdlib>
#include <string>
#include <vector>

using platform::AttributedString;
using platform::CompositingOperation;
using platform::Font;
using platform::Size;
using platform::TextAttributes;
using platform::TextDrawingMode;
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
        const QRectF place(10 * scale, (28 - box.height) * scale, box.width * scale,
                           box.height * scale);
        EXPECT_TRUE(place.adjusted(-1, -1, 1, 1).contains(ink));
        // An L is a quarter narrower than the box is high; only its foot is broad.
        EXPECT_NEAR(ink.width(), place.width(), 3 * scale);
        const auto row = [&](int y) { return canvas.coverage(QRect(0, y, ink.right() + 1, 1)); };
        EXPECT_GT(row(ink.bottom()), 1.8 * row(ink.top() + 2));
        // What lies below the foot is the descent.
        EXPECT_NEAR(place.bottom() - ink.bottom() - 1, 0.236 * 14 * scale, 1 + scale / 2);
    }
}

TEST(Text, IsMeasuredByAdvanceWidthAndAscentPlusDescent) {
    Canvas canvas(60, 20);
    const auto size = [&](const std::string& text, const TextAttributes& attributes = {}) {
        return canvas.graphics().sizeOfText(AttributedString(text, attributes));
    };
    EXPECT_EQ(size(""), Size{});
    EXPECT_EQ(size("abc", inFont("", 0)), size("abc"));
    EXPECT_NEAR(size("abcabc").width, 2 * size("abc").width, 0.1);
    EXPECT_GT(size("abc ").width, size("abc").width);
    EXPECT_EQ(size("a\nb\tc"), size("a b c"));
    EXPECT_EQ(size("a\xE2\x80\xA8z"), size("a z"));
    EXPECT_NEAR(size("abc", inFont("", 28)).width, 2 * size("abc").width, 0.1);
    EXPECT_NEAR(size("abc", inFont("", 28)).height, 2 * size("abc").height, 0.5);
    EXPECT_GT(size("abc", inFont("", 0, true)).width, size("abc").width);
    EXPECT_EQ(size("abc", inFont("", 1e30)), size("abc", inFont("", 1024)));
    EXPECT_EQ(size("abc", inFont("", std::nan(""))), size("abc"));

    AttributedString mixed("abcabc");
    mixed.setAttributes(inFont("", 28), 3, 3);
    const Size both = canvas.graphics().sizeOfText(mixed);
    EXPECT_NEAR(both.width, 3 * size("abc").width, 0.2);
    EXPECT_EQ(both.height, size("abc", inFont("", 28)).height);

    QFont large(QStringLiteral("DejaVu Sans"));
    large.setPixelSize(28);
    const platform::qt::ScopedContext inner(canvas.graphics(), canvas.image(), {60, 20}, 1,
                                            Qt::black, large);
    EXPECT_EQ(size("abc").height, both.height) << "the innermost context's font counts";
}

TEST(Text, HasTheColourOfItsRunElseOfTheContext) {
    Canvas canvas(60, 20);
    AttributedString text("\u2588\u2588\u2588"); // full blocks
    text.setAttributes({{}, platform::Color{1, 0, 0, 1}, {}}, 3, 3);
    text.setAttributes({{}, platform::Color{0, 0, 1, 0.5}, {}}, 6, 3);
    const double step = canvas.graphics().sizeOfText(text).width / 3;
    canvas->drawText(text, {0, 2});
    const auto pixel = [&](int block) {
        return canvas.image().pixelColor(static_cast<int>((block + 0.5) * step), 10);
    };
    EXPECT_EQ(pixel(0), QColor(Qt::black));
    EXPECT_EQ(pixel(1), QColor(Qt::red));
    EXPECT_EQ(pixel(2), QColor(0, 0, 255, 128));
}

TEST(Text, ChangesOnlyTheGlyphsPixelsWhateverTheOperation) {
    const AttributedString text("Xor 8", {{}, platform::Color{1, 0, 0, 1}, {}});
    Canvas glyphs(60, 20);
    glyphs->drawText(text, {5, 2});
    for (const double ground : {1.0, 0.5, 0.0}) {
        for (int number = 0; number < 14; ++number) {
            Canvas canvas(60, 20);
            canvas->fillRect({{0, 0}, {60, 20}}, {0, 0, 1, ground}, CompositingOperation::Copy);
            const auto before = canvas.at(0, 0);
            canvas->setCompositingOperation(static_cast<CompositingOperation>(number));
            canvas->drawText(text, {5, 2});
            for (int y = 0; y < 20; ++y) {
                for (int x = 0; x < 60; ++x) {
                    const double shape = glyphs.alphaAt(x, y) / 255.0;
                    if (shape == 0) {
                        ASSERT_EQ(canvas.at(x, y), before) << number << ": " << x << ", " << y;
                    }
                    if (number == 10) {
                        // Opaque red: the ground leaves as the glyph comes, less where it was.
                        ASSERT_NEAR(canvas.at(x, y)[3], (1 - shape) * before[3], 1.1);
                        ASSERT_NEAR(canvas.at(x, y)[1], shape * (255 - before[0]), 1.1);
                    }
                }
            }
        }
    }
}

TEST(Text, IsFilledOutlinedOrBothAsTheModeSays) {
    const auto draw = [](TextDrawingMode mode) {
        Canvas canvas(60, 60);
        canvas->setTextDrawingMode(mode);
        if (mode == TextDrawingMode::Invisible)
            canvas->setShadow({0, 0}, 4);
        canvas->drawText(AttributedString("\u2588", inFont("", 40)), {10, 10});
        const QRect ink = canvas.ink();
        return std::array<double, 3>{
            canvas.coverage(), static_cast<double>(ink.width()),
            ink.isEmpty() ? 0.0 : canvas.alphaAt(ink.center().x(), ink.center().y())};
    };
    const auto fill = draw(TextDrawingMode::Fill);
    const auto stroke = draw(TextDrawingMode::Stroke);
    const auto both = draw(TextDrawingMode::FillStroke);
    EXPECT_EQ(fill[2], 255);
    EXPECT_EQ(stroke[2], 0);
    EXPECT_EQ(both[2], 255);
    EXPECT_GT(stroke[0], 2 * fill[1]);
    EXPECT_LT(stroke[0], 0.5 * fill[0]);
    EXPECT_GT(both[0], fill[0]);
    EXPECT_EQ(draw(TextDrawingMode::Invisible)[0], 0);
}

TEST(Text, OfAnyKindIsDrawn) {
    for (const std::string text :
         {"\xFF\xFE", "a\xC3", "\xED\xA0\x80", "שלום", "مرحبا", "😀👩‍👩‍👧",
          "e\u0301\u0301\u0301", "\u202E(abc)\u202C"}) {
        SCOPED_TRACE(text);
        for (const auto operation : {CompositingOperation::SourceOver, CompositingOperation::XOR}) {
            Canvas canvas(200, 30);
            canvas->setCompositingOperation(operation);
            AttributedString cut(text);
            cut.setAttributes(inFont("", 16), 1, text.size() - 1);
            canvas->drawText(cut, {20, 5});
            EXPECT_GT(canvas.coverage(), 3);
            EXPECT_GE(canvas.ink().left(), 18);
            EXPECT_LE(canvas.ink().right(), 22 + canvas.graphics().sizeOfText(cut).width);
        }
    }
    Canvas canvas(10, 10);
    canvas->drawText(AttributedString(std::string("a\0b", 3)), {std::nan(""), 0});
    EXPECT_EQ(canvas.coverage(), 0);
    // A run that begins within a character takes the whole of it.
    AttributedString cut("\u00E9");
    cut.setAttributes({}, 1, 1);
    EXPECT_EQ(canvas.graphics().sizeOfText(cut),
              canvas.graphics().sizeOfText(AttributedString("\u00E9")));
    EXPECT_EQ(canvas.graphics().sizeOfText(AttributedString("\xFF")),
              canvas.graphics().sizeOfText(AttributedString("\uFFFD")));
    EXPECT_EQ(canvas.graphics().sizeOfText(AttributedString(std::string("a\0b", 3))),
              canvas.graphics().sizeOfText(AttributedString("a b")));
}

TEST(Text, InAMissingFontIsLoggedOncePerFamilyAndDrawn) {
    test::RecordingLog log;
    Canvas canvas(60, 20);
    for (int time = 0; time < 2; ++time) {
        for (const char* family :
             {"", "DejaVu Sans", "dejavu sans", "sans-serif", "Nowhere One", "Nowhere Two"}) {
            const AttributedString text("abc", inFont(family, 12 + time));
            EXPECT_GT(canvas.graphics().sizeOfText(text).width, 0);
            canvas->drawText(text, {0, 2});
        }
    }
    EXPECT_GT(canvas.coverage(), 0);
    QFont missing(QStringLiteral("Nowhere One"));
    const std::string found = QFontInfo(missing).family().toStdString();
    EXPECT_THAT(log.take(), ElementsAre("font Nowhere One is missing, drawing with " + found,
                                        "font Nowhere Two is missing, drawing with " + found));
}

TEST(TextDeathTest, OnAMachineWithoutFontsIsLoggedOnce) {
    const test::TemporaryFolder folder;
    const std::string file = folder.write("fonts.conf", "<fontconfig></fontconfig>");
    testing::GTEST_FLAG(death_test_style) = "threadsafe";
    // The new process makes its application, and looks for fonts, after this.
    setenv("FONTCONFIG_FILE", file.c_str(), 1);
    const auto draw = [] {
        test::RecordingLog log;
        Canvas canvas(200, 20);
        for (const char* family : {"", "DejaVu Sans", "Nowhere"}) {
            const AttributedString text("abc", inFont(family, 12));
            canvas->setShadow({1, -1}, 2);
            canvas->drawText(text, {0, 2});
            canvas->setCompositingOperation(CompositingOperation::XOR);
            canvas->drawText(text, {0, 2});
        }
        const bool once =
            log.take() == std::vector<std::string>{"no font is installed, text is drawn as boxes"};
        std::_Exit(once ? 0 : 1);
    };
    EXPECT_EXIT(draw(), testing::ExitedWithCode(0), "");
    unsetenv("FONTCONFIG_FILE");
}
