#include "platform/qt/ApplicationIcons.h"

#include "platform/qt/QtImage.h"
#include "tests/support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <limits>

using namespace platform::qt;

namespace {

using Words = std::vector<std::uint32_t>;

Words picture(std::uint32_t width, std::uint32_t height, std::uint32_t pixel) {
    Words words{width, height};
    words.resize(2 + std::size_t{width} * height, pixel);
    return words;
}

Words operator+(Words one, const Words& other) {
    one.insert(one.end(), other.begin(), other.end());
    return one;
}

/// The pixel in the middle at 1 and 2 pixels per point.
std::pair<QRgb, QRgb> centers(const platform::Image& image) {
    const auto center = [&](double scale) {
        const QImage& pixels = static_cast<const QtImage&>(image).pixelsForScale(scale);
        EXPECT_EQ(pixels.width(), 16 * scale);
        EXPECT_EQ(pixels.height(), 16 * scale);
        return pixels.pixel(pixels.rect().center());
    };
    return {center(1), center(2)};
}

TEST(ApplicationIcons, AreTheBestPicturesOfAWindow) {
    constexpr QRgb kRed = 0xFFFF0000, kGreen = 0xFF00FF00, kBlue = 0xFF0000FF;
    struct Row {
        Words value;
        std::pair<QRgb, QRgb> pixels; ///< 0, 0: there is no icon
    };
    const Words small = picture(8, 8, kRed), exact = picture(16, 16, kGreen),
                large = picture(64, 64, kBlue);
    int row = 0;
    for (const auto& [value, pixels] :
         std::vector<Row>{{large + small + exact, {kGreen, kBlue}},
                          {small + exact, {kGreen, kGreen}},
                          {small, {kRed, kRed}},
                          {exact + Words{64, 64, kBlue}, {kGreen, kGreen}}, // cut
                          {picture(1025, 20, kBlue) + exact, {kGreen, kGreen}},
                          {picture(32, 2, kRed), {kRed, kRed}},
                          {Words{0, 16} + exact, {0, 0}},
                          {Words{0xFFFFFFFF, 0xFFFFFFFF, 1}, {0, 0}},
                          {Words{0x10000, 0x10000, 1}, {0, 0}},
                          {Words{1, 1}, {0, 0}},
                          {{}, {0, 0}}}) {
        const auto image = iconFromProperty(value, 16);
        ASSERT_EQ(image != nullptr, pixels.first != 0) << row;
        EXPECT_EQ(image ? centers(*image) : pixels, pixels) << row;
        ++row;
    }
    for (const double size : {0.0, -1.0, 513.0, std::numeric_limits<double>::quiet_NaN()})
        EXPECT_EQ(iconFromProperty(exact, size), nullptr) << size;
}

TEST(ApplicationIcons, AreReadFromFiles) {
    const test::TemporaryFolder folder;
    QImage pixels(40, 40, QImage::Format_ARGB32);
    pixels.fill(0xFF336699);
    const std::string file = folder.file("icon.png");
    ASSERT_TRUE(pixels.save(QString::fromStdString(file)));
    const auto image = iconNamed(file, 16);
    ASSERT_TRUE(image);
    EXPECT_EQ(centers(*image), std::pair(0xFF336699, 0xFF336699));
    for (const std::string& missing :
         {folder.write("text.png", "not an image"), folder.path().string(), folder.file("none"),
          std::string("no-such-icon-in-any-theme.png"), std::string()})
        EXPECT_EQ(iconNamed(missing, 16), nullptr) << missing;
}

} // namespace
