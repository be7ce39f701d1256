#include "ui/TintedImage.h"
#include "tests/support/Fakes.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using namespace platform;
using HalvexTintedImage::tintedImageWithColor;
using testing::ElementsAre;

TEST(TintedImage, AppliesOpaqueColorsAtAQuarterAndOthersAtTheirOwnAlpha) {
    const struct {
        Color color;
        const char* filled;
    } cases[] = {
        {{1, 0, 0.5, 1}, "1 0 0.5 0.25 space 0"},
        {deviceRGB(0, 1, 0), "0 1 0 0.25 space 0"},
        {calibratedWhite(1), "1 1 1 0.25 space 0"},
        {{1, 0, 0, 0.5}, "1 0 0 0.5 space 0"},
        {calibratedWhite(0.5, 0), "0.5 0.5 0.5 0 space 2"},
    };
    test::RecordingGraphics graphics;
    const test::BlankImage image(10.5, 20);
    for (const auto& [color, filled] : cases) {
        graphics.drawn.clear();
        EXPECT_EQ(tintedImageWithColor(image, color)->size(), (Size{10.5, 20}));
        EXPECT_THAT(graphics.drawn,
                    ElementsAre("canvas 10.5 20",
                                "image 0 0 10.5 20 into 0 0 10.5 20 operation 2 fraction 1",
                                std::string("fill 0 0 10.5 20 with ") + filled + " operation 5"));
    }
}
