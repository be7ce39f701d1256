#include "Canvas.h"

#include <gtest/gtest.h>

#include <optional>

using namespace platform;
using test::Canvas;

namespace {

/// Text that only its shadow shows, at a place with room around it.
AttributedString block(std::optional<Shadow> shadow, const Color& color = {1, 0, 0, 1}) {
    return AttributedString("\u2588\u2588", {.foregroundColor = color, .shadow = shadow});
}

/// The centre of gravity of what is drawn.
QPointF center(Canvas& canvas) {
    QPointF sum;
    for (int y = 0; y < canvas.image().height(); ++y)
        for (int x = 0; x < canvas.image().width(); ++x)
            sum += QPointF(x, y) * (canvas.alphaAt(x, y) / 255.0);
    return sum / canvas.coverage();
}

} // namespace

TEST(TextShadow, FallsByItsOffsetAndKeepsItsWeight) {
    for (const double scale : {1.0, 1.5, 2.0}) {
        Canvas text(120, 100, scale);
        text->drawText(block({}), {40, 40});
        for (const auto& [x, y, blurRadius] :
             {std::array{30.0, 0.0, 0.0}, {0, 30, 1.5}, {-30, -30, 5}, {1, -1, 10}}) {
            SCOPED_TRACE(testing::Message() << scale << ": " << x << " " << y);
            // The text's place is taken out by drawing it far outside of the canvas.
            Canvas shadow(120, 100, scale);
            shadow->drawText(block(Shadow{{x + 1000, y}, blurRadius, {0, 0, 0, 1}}), {-960, 40});
            EXPECT_NEAR(shadow.coverage(), text.coverage(), text.coverage() * 0.02);
            const QPointF fall = center(shadow) - center(text);
            EXPECT_NEAR(fall.x(), x * scale, 0.3);
            EXPECT_NEAR(fall.y(), -y * scale, 0.55) << "glyphs stand on whole rows of pixels";
        }
    }
}

TEST(TextShadow, HasTheProfileOfAGaussian) {
    // The edge of a broad block is the integral of the bell curve.
    const auto draw = [](Canvas& canvas, double blurRadius) {
        const platform::TextAttributes attributes{.font = platform::Font{"", 80, false},
                                                  .foregroundColor = Color{},
                                                  .shadow =
                                                      Shadow{{1000, 0}, blurRadius, {0, 0, 0, 1}}};
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
}

TEST(TextShadow, AndColourOfARunTakeThePlaceOfTheContexts) {
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
    EXPECT_EQ(pixel(0.875, 47), QColor(Qt::black)) << "the context's";
    EXPECT_EQ(pixel(0.125, 77), QColor(0, 0, 0, 85)) << "the context's, a third opaque";
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
