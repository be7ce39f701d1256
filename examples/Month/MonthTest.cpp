#include "testing/ItemUnderTest.h"

#include <gmock/gmock.h>

using namespace platform;
using testing::Contains;
using testing::StartsWith;

/// 2026-11-22, a Sunday; the 1st is a Sunday as well, in the first row.
constexpr std::int64_t kSunday = 1795387287;

TEST(Month, ShowsTheMonthInItsMenuAndFollowsTheWheelAndTheKeys) {
    halvextest::ItemUnderTest item;
    item.clock.seconds = kSunday;
    ASSERT_TRUE(item.load("Month"));
    EXPECT_EQ(item.title(), "22");
    item.menuTitles(); // opens the menu
    const auto view = item.extra().menu()->items().front()->view();
    ASSERT_TRUE(view);
    const auto month = [&] { return view->accessibleDescription().value; };
    EXPECT_EQ(month(), "2026-11");
    EXPECT_TRUE(view->scrollWheel({.deltaY = 1}));
    EXPECT_TRUE(view->keyDown({.key = Key::PageUp}));
    EXPECT_EQ(month(), "2026-09");
    EXPECT_FALSE(view->keyDown({.key = Key::Escape})) << "closes the menu";
    item.menuTitles();
    EXPECT_EQ(month(), "2026-11") << "the present month each time";

    view->drawRect({{}, view->frame().size});
    EXPECT_THAT(item.graphics.drawn, Contains(StartsWith("text 30 at")));
    EXPECT_THAT(item.graphics.drawn, Not(Contains(StartsWith("text 31 at"))));
    view->mouseDown({.location = {6.5 * 26, 5.5 * 26}}); // the last column of the first week
    EXPECT_EQ(item.pasteboard.text, "2026-11-01");
    view->mouseDown({.location = {0.5 * 26, 5.5 * 26}}); // empty
    EXPECT_EQ(item.pasteboard.text, "2026-11-01");
}
