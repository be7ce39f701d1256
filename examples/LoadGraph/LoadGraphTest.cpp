#include "testing/ItemUnderTest.h"

#include <gmock/gmock.h>

using namespace platform;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::Not;

TEST(LoadGraph, DrawsAsManyMeasurementsAsThePreferencesSay) {
    constexpr const char* kIdentifier = "org.example.LoadGraph";
    halvextest::ItemUnderTest item;
    ASSERT_TRUE(item.load("LoadGraph", {{"CFBundleIdentifier", kIdentifier}}));
    const auto width = [&] { return item.extra().image()->size().width; };
    EXPECT_TRUE(item.extra().image()->isTemplate()) << "it has the bar's text colour";
    EXPECT_EQ(width(), 40) << "20 bars of 2 points";
    item.preferences[kIdentifier].set("Bars", std::int64_t{50});
    EXPECT_EQ(width(), 100);
    for (const std::int64_t unusable : {-1, 0, 1'000'000'000}) {
        item.preferences[kIdentifier].set("Bars", unusable);
        EXPECT_THAT(width(), testing::AllOf(testing::Ge(2), testing::Le(200))) << unusable;
    }
    EXPECT_THAT(item.menuTitles(), ElementsAre("10 bars", "20 bars", "40 bars"));
    EXPECT_TRUE(item.choose("10 bars"));
    EXPECT_EQ(width(), 20);

    item.graphics.drawn.clear();
    item.timers.advance(60s);
    EXPECT_THAT(item.graphics.drawn, Not(testing::IsEmpty()));
}
