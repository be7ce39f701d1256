#include "platform/values/Event.h"
#include "testing/ItemUnderTest.h"

#include <gmock/gmock.h>

using testing::ElementsAre;
using testing::MatchesRegex;

TEST(Uptime, ShowsTheTimeEveryMinuteAndCopiesIt) {
    halvextest::ItemUnderTest item;
    ASSERT_TRUE(item.load("Uptime"));
    EXPECT_THAT(item.title(), MatchesRegex("([0-9]+d )?[0-9]+h [0-9]+m"));
    EXPECT_THAT(item.clock.intervals(), ElementsAre(platform::TickInterval::Minute));
    EXPECT_THAT(item.menuTitles(), ElementsAre("Copy"));
    EXPECT_TRUE(item.choose("Copy"));
    EXPECT_EQ(item.pasteboard.text, item.title());

    item.pasteboard.text.clear();
    item.click(platform::kShiftKeyMask);
    EXPECT_EQ(item.pasteboard.text, item.title());
    EXPECT_EQ(item.host.menuToggles, 0) << "Shift does not open the menu";
    item.click();
    EXPECT_EQ(item.host.menuToggles, 1);
}
