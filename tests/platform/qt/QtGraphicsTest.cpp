#include "Canvas.h"
#include "platform/Exception.h"

#include <gtest/gtest.h>

using namespace platform;
using platform::qt::QtGraphics;
using platform::qt::ScopedContext;
using test::Canvas;

namespace {

const platform::Color kRed{1, 0, 0, 1};

} // namespace

TEST(QtGraphics, DrawsIntoTheInnermostContextAndIntoNoneOutside) {
    Canvas outer(4, 4);
    QImage inner(4, 4, QImage::Format_ARGB32_Premultiplied);
    inner.fill(Qt::transparent);
    const auto fill = [&](double x) {
        outer.graphics().currentContext().fillRect({{x, 0}, {1, 4}}, kRed,
                                                   CompositingOperation::Copy);
    };
    fill(0);
    {
        const ScopedContext innerScope(outer.graphics(), inner, {4, 4}, 1);
        fill(1);
    }
    fill(2);
    for (int x = 0; x < 4; ++x) {
        EXPECT_EQ(outer.alphaAt(x, 0) != 0, x == 0 || x == 2) << x;
        EXPECT_EQ(qAlpha(inner.pixel(x, 0)) != 0, x == 1) << x;
    }
    EXPECT_THROW(QtGraphics().currentContext(), platform::Exception);
}

TEST(QtGraphics, LeavesTheTargetWholeWhateverItsFormatRatioAndOwners) {
    QtGraphics graphics;
    QImage target(80, 40, QImage::Format_RGB32);
    target.fill(Qt::white);
    target.setDevicePixelRatio(2);
    const QImage before = target;
    const ScopedContext scope(graphics, target, {40, 20}, 2);
    graphics.currentContext().fillRect({{0, 0}, {10, 10}}, kRed, CompositingOperation::SourceOver);
    EXPECT_EQ(before.pixelColor(5, 30), QColor(Qt::white));
    EXPECT_EQ(target.pixelColor(5, 30), QColor(Qt::red));
    EXPECT_EQ(target.pixelColor(25, 30), QColor(Qt::white));
    EXPECT_EQ(target.devicePixelRatio(), 2);
}

TEST(QtGraphics, RestoresEverySettingThatWasSavedLevelByLevel) {
    Canvas canvas(60, 20);
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
