#include "platform/qt/QtImage.h"

#include "Canvas.h"
#include "platform/base/Exception.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <sys/stat.h>

using namespace platform;
using namespace testing;
using platform::qt::QtImage;
using test::Canvas;

namespace {

QImage plain(int width, int height, const QColor& color) {
    QImage image(width, height, QImage::Format_ARGB32);
    image.fill(color);
    return image;
}

/// Returns 4 x 4 pixels: red and green in the upper corners, blue and white in the lower ones.
QImage fourCorners() {
    QImage image = plain(4, 4, Qt::white);
    for (int i = 0; i < 4; ++i) {
        image.setPixelColor(i % 2, i / 2, Qt::red);
        image.setPixelColor(i % 2 + 2, i / 2, Qt::green);
        image.setPixelColor(i % 2, i / 2 + 2, Qt::blue);
    }
    return image;
}

void draw(Canvas& canvas, const platform::Image& image, const Rect& destination,
          const Rect& source) {
    canvas->drawImage(image, destination, source, CompositingOperation::SourceOver, 1);
}

} // namespace

class QtImageNamed : public testing::TestWithParam<const char*> {};

TEST_P(QtImageNamed, LoadsItsSiblingsAndDrawsThePixelsForTheScale) {
    const test::TemporaryFolder folder;
    const QString base = QString::fromStdString(folder.file(GetParam()));
    ASSERT_TRUE(plain(5, 4, Qt::red).save(base + ".png"));
    ASSERT_TRUE(plain(10, 8, Qt::green).save(base + "@2x.png"));
    ASSERT_TRUE(plain(15, 12, Qt::blue).save(base + "@3x.png"));
    platform::qt::QtGraphics graphics;
    const auto image = graphics.imageWithContentsOfFile((base + ".png").toStdString());
    ASSERT_TRUE(image);
    EXPECT_EQ(image->size(), (platform::Size{5, 4}));
    EXPECT_EQ(QtImage(plain(39, 20, Qt::red), 2.5).size(), (platform::Size{15.6, 8}));
    for (const auto& [scale, stretch, color] : {std::tuple{0.5, 1, Qt::red},
                                                {1.25, 1, Qt::green},
                                                {2.0, 1, Qt::green},
                                                {4.0, 1, Qt::blue},
                                                {1.0, 2, Qt::green}}) {
        Canvas canvas(10, 8, scale);
        draw(canvas, *image, {{0, 0}, {5.0 * stretch, 4.0 * stretch}}, {{0, 0}, {5, 4}});
        EXPECT_EQ(canvas.image().pixelColor(0, canvas.image().height() - 1), QColor(color))
            << scale;
        EXPECT_NEAR(canvas.coverage(), 20 * scale * scale * stretch * stretch, 0.1) << scale;
    }
}

// Qt interprets "@2x" itself, but only in a name without a dot before it.
INSTANTIATE_TEST_SUITE_P(, QtImageNamed, testing::Values("a.b", "ab"));

TEST(QtImage, IsNullAndLoggedIfTheFileCannotBeRead) {
    test::RecordingLog log;
    const test::TemporaryFolder folder;
    ASSERT_TRUE(plain(4, 4, Qt::red).save(QString::fromStdString(folder.file("fine.png"))));
    folder.write("fine@2x.png", "no image");
    folder.write("broken.png", "\x89PNG\r\n\x1a\nbroken");
    // The header declares 60000 x 60000 pixels.
    folder.write("absurd.ppm", "P6 60000 60000 255\n");
    ASSERT_EQ(mkfifo(folder.file("pipe.png").c_str(), 0600), 0);
    for (const char* name : {"missing.png", "broken.png", "absurd.ppm", "pipe.png", ""}) {
        const std::string path = folder.file(name);
        EXPECT_EQ(QtImage::fromFile(path), nullptr) << name;
        EXPECT_THAT(log.take(), ElementsAre(StartsWith("image " + path + " cannot be read: ")));
    }
    EXPECT_TRUE(QtImage::fromFile(folder.file("fine.png")));
    EXPECT_THAT(log.take(), ElementsAre(HasSubstr("fine@2x.png cannot be read: ")));
}

TEST(QtImage, IsDrawnUprightWithSourceRectanglesFromTheBottomLeft) {
    const QtImage image(fourCorners());
    for (const int scale : {1, 2}) {
        SCOPED_TRACE(scale);
        const int last = 10 * scale - 1;
        Canvas canvas(10, 10, scale);
        draw(canvas, image, {{0, 0}, {4, 4}}, {{0, 0}, {4, 4}});
        EXPECT_EQ(canvas.image().pixelColor(0, last), QColor(Qt::blue));
        EXPECT_EQ(canvas.image().pixelColor(0, last - 4 * scale + 1), QColor(Qt::red));
        EXPECT_EQ(canvas.image().pixelColor(4 * scale - 1, last - 4 * scale + 1),
                  QColor(Qt::green));
        EXPECT_EQ(canvas.ink(), QRect(0, 6 * scale, 4 * scale, 4 * scale));
        // Pixels outside of the source rectangle do not blend in.
        draw(canvas, image, {{5, 5}, {4, 4}}, {{0, 2}, {2, 2}});
        EXPECT_EQ(canvas.image().pixelColor(5 * scale, 5 * scale - 1), QColor(Qt::red));
        EXPECT_EQ(canvas.image().pixelColor(9 * scale - 1, scale), QColor(Qt::red));
    }
    // The part of the source rectangle outside of the image is transparent.
    Canvas canvas(8, 8);
    draw(canvas, image, {{0, 0}, {8, 8}}, {{-2, -2}, {8, 8}});
    EXPECT_EQ(canvas.ink(), QRect(2, 2, 4, 4));
    EXPECT_EQ(canvas.image().pixelColor(2, 5), QColor(Qt::blue));
}

TEST(QtImage, IsAveragedWhenShrunk) {
    QImage stripes = plain(16, 16, Qt::transparent);
    for (int x = 0; x < 16; x += 2)
        for (int y = 0; y < 16; ++y)
            stripes.setPixelColor(x, y, Qt::black);
    for (const double scale : {1.0, 1.25, 1.5}) {
        Canvas canvas(4, 4, scale);
        draw(canvas, QtImage(stripes), {{0, 0}, {4, 4}}, {{0, 0}, {16, 16}});
        EXPECT_NEAR(canvas.alphaAt(canvas.image().width() / 2, 1), 128, 24) << scale;
    }
}

TEST(TemplateImage, IsDrawnInTheTextColourWithItsOwnAlpha) {
    const test::TemporaryFolder folder;
    for (const auto& [name, side] :
         {std::pair("loadTemplate.png", 4), {"loadTemplate@2x.png", 8}}) {
        QImage image = plain(side, side, QColor(200, 30, 90, 0));
        for (int y = 0; y < side; ++y) { // the left half opaque, the next quarter half transparent
            for (int x = 0; x < side * 3 / 4; ++x)
                image.setPixelColor(x, y, QColor(200, 30, 90, x < side / 2 ? 255 : 128));
        }
        ASSERT_TRUE(image.save(QString::fromStdString(folder.file(name))));
    }
    ASSERT_TRUE(plain(4, 4, Qt::red).save(QString::fromStdString(folder.file("Templates.png"))));
    platform::qt::QtGraphics graphics;
    const auto image = graphics.imageWithContentsOfFile(folder.file("loadTemplate.png"));
    ASSERT_TRUE(image);
    EXPECT_TRUE(image->isTemplate());
    EXPECT_EQ(graphics.templateImage(image), image);
    EXPECT_FALSE(graphics.imageWithContentsOfFile(folder.file("Templates.png"))->isTemplate());

    using Operation = CompositingOperation;
    using Pixel = std::array<int, 4>;
    for (const double scale : {1.0, 1.5, 2.0}) {
        for (const int grey : {0, 240}) { // the text colours of a light and a dark bar
            const Pixel opaque{255, grey, grey, grey};
            Canvas canvas(4, 4, scale, QColor(grey, grey, grey));
            canvas.image().fill(Qt::blue);
            canvas->drawImage(*image, {{0, 0}, {4, 4}}, {{0, 0}, {4, 4}}, Operation::Copy, 1);
            const int last = static_cast<int>(4 * scale) - 1;
            EXPECT_EQ(canvas.at(0, last), opaque) << scale;
            EXPECT_EQ(canvas.alphaAt(last, 0), 0) << "copied, not drawn over the blue";

            canvas.image().fill(Qt::blue); // the highlight, while the menu is open
            canvas->drawImage(*image, {{0, 0}, {4, 4}}, {{0, 0}, {4, 4}}, Operation::XOR, 1);
            EXPECT_EQ(canvas.alphaAt(0, 0), 0) << "the bar shows through the shape";
            EXPECT_EQ(canvas.at(last, 0), (Pixel{255, 0, 0, 255}));
            const int half = canvas.alphaAt(static_cast<int>(2.5 * scale), 0);
            EXPECT_NEAR(half, 127, scale == 1.5 ? 64 : 1) << scale; // between pixels at 1.5
        }
    }
}

TEST(TemplateImage, IsMadeFromAnyImageAndLeavesThatUnchanged) {
    Canvas canvas(3, 3, 2, Qt::green);
    canvas.graphics().setDrawingScale(2);
    const auto red = canvas.graphics().imageByDrawing({2.5, 2.5}, [](GraphicsContext& context) {
        context.fillRect({{0, 0}, {2, 2}}, {1, 0, 0}, CompositingOperation::Copy);
    });
    const auto shape = canvas.graphics().templateImage(red);
    EXPECT_EQ(shape->size(), red->size());
    for (const auto& [image, color] : {std::pair(shape, Qt::green), {red, Qt::red}}) {
        draw(canvas, *image, {{0, 0}, image->size()}, {{}, image->size()});
        EXPECT_EQ(canvas.image().pixelColor(0, 5), QColor(color));
    }
    EXPECT_EQ(canvas.ink(), QRect(0, 2, 4, 4));
    EXPECT_EQ(canvas.graphics().templateImage(nullptr), nullptr);
    class Foreign final : public platform::Image {
        platform::Size size() const override { return {1, 1}; }
    };
    EXPECT_THROW(canvas.graphics().templateImage(std::make_shared<Foreign>()), Exception);
}
