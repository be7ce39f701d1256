#include "extras/HalvexDateCalMenu/CalendarStyle.h"
#include "extras/HalvexDateCalMenu/DayIcon.h"
#include "identifiers/ExportedIdentifiers.h"
#include "testing/ManualAppearance.h"
#include "testing/ManualPreferences.h"
#include "testing/RecordingGraphics.h"
#include "tests/paths/SupportTree.h"

#include <gmock/gmock.h>

using namespace platform;

namespace {

TEST(CalendarStyle, TakesColorsAndTheFontFromTheThemeUnlessTheUserPrefersHighContrast) {
    const test::SupportTree tree;
    halvextest::ManualAppearance appearance;
    halvextest::ManualPreferences preferences;
    const Color event = extras::currentCalendarStyle().event;
    tree.write("~/Library/Application Support/Themes/Plain/Theme.plist",
               "<plist version=\"1.0\"><dict><key>Colors</key><dict><key>Light</key><dict>"
               "<key>Today</key><string>#ff0000</string></dict></dict><key>Font</key><dict>"
               "<key>Family</key><string>Serif</string></dict></dict></plist>");
    preferences[appHalvex4Prefs].set("Theme", "Plain");
    EXPECT_EQ(extras::currentCalendarStyle().today, (Color{1, 0, 0}));
    EXPECT_EQ(extras::currentCalendarStyle().event, event);
    EXPECT_EQ(extras::currentCalendarStyle().heading, (Font{"Serif", 15, true}));
    appearance.setHighContrast(true);
    EXPECT_NE(extras::currentCalendarStyle().today, (Color{1, 0, 0}));
    EXPECT_EQ(extras::currentCalendarStyle().details.family, "Serif");
}

TEST(CalendarStyle, ColorsTheIconOnlyIfTheThemeDoes) {
    halvextest::RecordingGraphics graphics;
    EXPECT_TRUE(extras::dayIcon(23)->isTemplate());
    graphics.drawn.clear();
    EXPECT_FALSE(extras::dayIcon(23, Color{1, 0, 0})->isTemplate());
    EXPECT_EQ(graphics.drawn.back(), "fill 0 0 18 18 with 1 0 0 1 space 0 operation 5");
}

} // namespace
