#include "Canvas.h"

#include <gtest/gtest.h>

#include <optional>

using platform::AttributedString;
using platform::Color;
using platform::CompositingOperation;
using platform::Shadow;
using test::Canvas;

namespace {

/// Text that only its shadow shows, at a place with room around it.
AttributedString block(std::optional<Shadow> shadow, const Color& color = {1, 0, 0, 1}) {
    return AttributedString("\u2588\u2588", {{}, color, shadow});
}

/// What a shadow adds to the text on a transparent ground: where, and how much of it.
struct Extent {
    QRect ink;
    double coverage = 0;
    QPointF center; ///< of gravity
};

Extent shadowAlone(Canvas& canvas) {
    Extent extent{canvas.ink(), canvas.coverage(), {}};
    for (int y = 0; y < canvas.image().height(); ++y)
        for (int x = 0; x < canvas.image().width(); ++x)
            extent.center += QPointF(x, y) * (canvas.alphaAt(x, y) / 255.0);
    extent.center /= extent.coverage;
    return extent;
}

} // namespace

TEST(TextShadow, FallsByItsOffsetSpreadsByItsBlurAndKeepsItsWeight) {
    struct Case {
        platform::Size offset;
        double blurRadius;
    };
    for (const double scale : {1.0, 1.5, 2.0}) {
        Canvas plain(120, 100, scale);
        plain->drawText(block({}), {40, 40});
        const Extent text = shadowAlone(plain);
        for (const auto& [offset, blurRadius] :
             {Case{{30, 0}, 0}, {{0, 30}, 1.5}, {{-30, -30}, 5}, {{1, -1}, 10}, {{0, 0}, 1}}) {
            SCOPED_TRACE(testing::Message() << scale << ": " << offset.width << " " << offset.height
                                            << " " << blurRadius);
            Canvas both(120, 100, scale);
            both->drawText(block(Shadow{offset, blurRadius, {0, 0, 0, 1}}), {40, 40});
            EXPECT_EQ(
                both.at(text.ink.left() + text.ink.width() / 4, static_cast<int>(text.center.y())),
                (std::array{255, 255, 0, 0}))
                << "the text lies on top";

            // The text's place is taken out by drawing it far outside of the canvas.
            Canvas canvas(120, 100, scale);
            const Shadow far{{offset.width + 1000, offset.height}, blurRadius, {0, 0, 0, 1}};
            canvas->drawText(block(far), {40 - 1000, 40});
            const Extent shadow = shadowAlone(canvas);
            EXPECT_NEAR(shadow.coverage, text.coverage, text.coverage * 0.02);
            EXPECT_NEAR(shadow.center.x() - text.center.x(), offset.width * scale, 0.3);
            // Glyphs stand on whole rows of pixels.
            EXPECT_NEAR(shadow.center.y() - text.center.y(), -offset.height * scale, 0.55);
            const double spread = (shadow.ink.width() - text.ink.width()) / 2.0;
            const double deviation = blurRadius / 2 * scale;
            EXPECT_LE(spread, 3 * deviation + 3);
            EXPECT_GE(spread, 1.5 * deviation - 1);
        }
    }
}

TEST(TextShadow, HasTheProfileOfAGaussian) {
    // The edge of a broad block is the integral of the bell curve.
    const auto draw = [](Canvas& canvas, double blurRadius) {
        const platform::TextAttributes attributes{platform::Font{"", 80, false}, Color{},
                                                  Shadow{{1000, 0}, blurRadius, {0, 0, 0, 1}}};
        canvas->drawText(AttributedString("\u2588\u2588", attributes), {50 - 1000, 0});
    };
    Canvas sharp(200, 100);
    draw(sharp, 0);
    const double edge = 80 - sharp.coverage(QRect(0, 50, 80, 1));
    for (const double deviation : {0.75, 2.0, 2.5, 6.0}) {
        Canvas canvas(200, 100);
        draw(canvas, 2 * deviation);
        for (int x = 30; x < 70; ++x) {
            const double distance = (edge - (x + 0.5)) / deviation;
            EXPECT_NEAR(canvas.alphaAt(x, 50), 255 * 0.5 * std::erfc(distance / std::sqrt(2.0)), 6)
                << deviation << " at " << x;
        }
    }
}

TEST(TextShadow, IsNotThereWhenItCannotShow) {
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
    Canvas canvas(120, 100);
    canvas->setShadow({3, 3}, 2);
    canvas->drawText(AttributedString(""), {40, 40});
    canvas->drawText(AttributedString(" "), {40, 40});
    canvas->fillRect({{0, 0}, {1, 1}}, {0, 0, 0, 1}, CompositingOperation::Copy);
    EXPECT_EQ(canvas.coverage(), 1);
}

TEST(TextShadow, OfARunTakesThePlaceOfTheContexts) {
    Canvas canvas(120, 100);
    canvas->setShadow({0, 30}, 0);
    AttributedString text("\u2588\u2588\u2588\u2588", {{}, Color{1, 0, 0, 1}, {}});
    text.addShadow({{0, -30}, 0, {0, 1, 0, 1}}, 6, 6);
    const double width = canvas.graphics().sizeOfText(text).width;
    canvas->drawText(text, {40, 40});
    const auto pixel = [&](double part, double y) {
        return canvas.image().pixelColor(static_cast<int>(40 + width * part),
                                         static_cast<int>(100 - y));
    };
    const double height = 47;
    EXPECT_EQ(pixel(0.125, height + 30), QColor(0, 0, 0, 85)) << "the context's, a third opaque";
    EXPECT_EQ(pixel(0.875, height + 30).alpha(), 0);
    EXPECT_EQ(pixel(0.875, height - 30), QColor(0, 255, 0, 255));
    EXPECT_EQ(pixel(0.125, height - 30).alpha(), 0);
}

TEST(TextShadow, IsDrawnWithTheCurrentOperationAndTheTextsOpacity) {
    const auto shadowPixel = [](CompositingOperation operation, double ground, double opacity) {
        Canvas canvas(120, 100);
        canvas->fillRect({{0, 0}, {120, 100}}, {1, 1, 1, ground}, CompositingOperation::Copy);
        canvas->setCompositingOperation(operation);
        canvas->drawText(block(Shadow{{0, 30}, 0, {0, 0, 0, 1}}, {1, 0, 0, opacity}), {40, 40});
        return canvas.at(46, 100 - 77);
    };
    EXPECT_EQ(shadowPixel(CompositingOperation::SourceOver, 1, 1), (std::array{255, 0, 0, 0}));
    EXPECT_EQ(shadowPixel(CompositingOperation::XOR, 1, 1), (std::array{0, 0, 0, 0}));
    EXPECT_EQ(shadowPixel(CompositingOperation::SourceAtop, 0, 1), (std::array{0, 0, 0, 0}));
    EXPECT_NEAR(shadowPixel(CompositingOperation::SourceOver, 0, 0.5)[0], 128, 1);
}
