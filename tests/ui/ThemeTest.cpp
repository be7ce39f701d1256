#include "ui/Theme.h"
#include "identifiers/ExportedIdentifiers.h"
#include "testing/ManualAppearance.h"
#include "testing/ManualPreferences.h"
#include "testing/RecordingGraphics.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/PollingMainThread.h"

#include <gmock/gmock.h>

using namespace platform;
using namespace std::chrono_literals;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

constexpr const char* kMine = "~/Library/Application Support/Themes/";
constexpr const char* kLocal = "/Library/Application Support/Quorvane Software/Themes/";
constexpr const char* kPane = "/Library/PreferencePanes/Halvex Pro.prefPane";
const std::string kShipped = std::string(kPane) + "/Contents/Resources/Themes/";

std::string plist(const std::string& root) {
    return "<plist version=\"1.0\"><dict>" + root + "</dict></plist>";
}
/// A theme whose light colour "Today" has the blue component @p blue.
std::string themeWith(const std::string& blue) {
    return plist("<key>Colors</key><dict><key>Light</key><dict><key>Today</key><string>#0000" +
                 blue + "</string></dict></dict>");
}

class ThemeTest : public testing::Test {
  protected:
    test::SupportTree tree;
    test::PollingMainThread mainThread;
    halvextest::ManualAppearance appearance;
    halvextest::ManualPreferences preferences;
    halvextest::RecordingGraphics graphics;

    void choose(const std::string& name) { preferences[appHalvex4Prefs].set("Theme", name); }
    void write(const std::string& folder, const std::string& contents) const {
        tree.write(folder + "/Theme.plist", contents);
    }
    /// Returns the blue component of "Today", or -1 if the theme does not define the colour.
    static double blue() { return ui::currentTheme()->color("Today", Color{0, 0, -1}).blue; }
};

TEST_F(ThemeTest, WithoutAChoiceEverythingIsTheCallersOwnAndNoFolderIsCreated) {
    const auto theme = ui::currentTheme();
    const auto image = std::make_shared<halvextest::BlankImage>(8, 8);
    EXPECT_EQ(theme->name(), "");
    EXPECT_FALSE(theme->color("Today"));
    EXPECT_EQ(theme->font({.family = "", .size = 11}), (Font{.family = "", .size = 11}));
    EXPECT_EQ(theme->icon("Day"), nullptr);
    EXPECT_EQ(theme->tinted(image), image);
    EXPECT_THAT(ui::themeNames(), IsEmpty());
    EXPECT_THAT(tree.entries(), IsEmpty());
    EXPECT_THAT(tree.log.take(), IsEmpty());
}

TEST_F(ThemeTest, FindsAThemeInTheUsersFolderFirstThenTheLocalOneThenThePane) {
    tree.write(std::string(kPane) + "/Contents/Info.plist", plist(""));
    write(kShipped + "Both", themeWith("01"));
    write(kLocal + std::string("Both"), themeWith("02"));
    write(kMine + std::string("Own"), themeWith("03"));
    write(kMine + std::string(".hidden"), themeWith("04"));
    tree.make(kMine + std::string("Empty"));
    const struct {
        const char* chosen;
        double blue;
    } cases[] = {{"Both", 2}, {"Own", 3}, {"Empty", -255}, {"", -255}};
    for (const auto& [chosen, expected] : cases) {
        choose(chosen);
        EXPECT_DOUBLE_EQ(blue() * 255, expected) << chosen;
    }
    const test::LoadedPane pane(tree.systemPath(kPane));
    write(kShipped + "Shipped", themeWith("05"));
    choose("Shipped");
    EXPECT_DOUBLE_EQ(blue() * 255, 5);
    EXPECT_EQ(ui::currentTheme()->name(), "Shipped");
    EXPECT_THAT(ui::themeNames(), ElementsAre("Both", "Own", "Shipped"));
}

TEST_F(ThemeTest, ColorsFollowTheAppearanceAndMayBeTranslucent) {
    write(kMine + std::string("Two"),
          plist("<key>Colors</key><dict>"
                "<key>Light</key><dict><key>A</key><string>#ff0080</string></dict>"
                "<key>Dark</key><dict><key>B</key><string>#00FF0033</string></dict></dict>"));
    choose("Two");
    const auto theme = ui::currentTheme();
    EXPECT_EQ(theme->color("A"), (Color{1, 0, 128 / 255.0}));
    EXPECT_EQ(theme->color("B"), std::nullopt);
    appearance.setDark(true);
    EXPECT_EQ(theme->color("A"), std::nullopt);
    EXPECT_EQ(theme->color("B"), (Color{0, 1, 0, 0.2}));
}

TEST_F(ThemeTest, TheFontFillsInWhatTheCallerLeavesOpen) {
    write(kMine + std::string("Serif"),
          plist("<key>Font</key><dict><key>Family</key><string>Serif</string>"
                "<key>Size</key><integer>12</integer><key>Bold</key><true/></dict>"));
    choose("Serif");
    const auto theme = ui::currentTheme();
    EXPECT_EQ(theme->font(), (Font{.family = "Serif", .size = 12, .bold = true}));
    EXPECT_EQ(theme->font({.family = "Mono", .size = 9}),
              (Font{.family = "Mono", .size = 9, .bold = true}));
}

TEST_F(ThemeTest, TintsIconsButNotTemplates) {
    const std::string folder = std::string(kMine) + "Icons";
    write(folder, plist("<key>Colors</key><dict><key>Light</key><dict><key>IconTint</key>"
                        "<string>#ff0000</string></dict></dict>"));
    tree.write(folder + "/Icons/Day.png", "");
    tree.write(folder + "/Icons/NightTemplate.png", "");
    tree.write(folder + "/Secret.png", "");
    choose("Icons");
    const auto theme = ui::currentTheme();
    EXPECT_NE(theme->icon("Day"), nullptr);
    EXPECT_THAT(graphics.drawn, testing::Contains("fill 0 0 13 13 with 1 0 0 0.25 space 0 "
                                                  "operation 5"));
    EXPECT_NE(theme->icon("Night"), nullptr); // without "Template" in its name
    EXPECT_EQ(theme->icon("Missing"), nullptr);
    EXPECT_EQ(theme->icon("../Secret"), nullptr);
    auto plate = std::make_shared<halvextest::BlankImage>(8, 8);
    EXPECT_NE(theme->tinted(plate), plate);
    plate->onlyAlpha = true;
    EXPECT_EQ(theme->tinted(plate), plate);
}

TEST_F(ThemeTest, ABrokenThemeIsTheDefaultLookAndIsLoggedOnce) {
    const auto colors = [](const std::string& light) {
        return "<key>Colors</key><dict><key>Light</key>" + light + "</dict>";
    };
    const auto color = [&](const std::string& value) {
        return colors("<dict><key>Today</key><string>" + value + "</string></dict>");
    };
    const auto font = [](const std::string& keys) {
        return "<key>Font</key><dict>" + keys + "</dict>";
    };
    const std::string badColor =
        "the Light color \"Today\" is not a text like #1a2b3c or #1a2b3c80";
    const std::string badSize = "the font's Size is not a number from 8 to 18";
    const std::pair<std::string, std::string> cases[] = {
        {"<key>Colours</key><dict/>", "the theme has the unknown key \"Colours\""},
        {"<key>Colors</key><string/>", "Colors is not a dictionary"},
        {"<key>Colors</key><dict><key>Lite</key><dict/></dict>",
         "Colors has the unknown key \"Lite\""},
        {colors("<array/>"), "Light is not a dictionary"},
        {colors("<dict><key>Today</key><true/></dict>"), badColor},
        {color("blue"), badColor},
        {color("123456"), badColor},
        {color("#12345"), badColor},
        {color("#12345g"), badColor},
        {color("#-12345"), badColor},
        {color("#1234567"), badColor},
        {color("#123456789a"), badColor},
        {font("<key>Size</key><integer>7</integer>"), badSize},
        {font("<key>Size</key><real>18.5</real>"), badSize},
        {font("<key>Size</key><real>nan</real>"), badSize},
        {font("<key>Size</key><string>12</string>"), badSize},
        {font("<key>Family</key><string/>"), "the font's Family is not a name"},
        {font("<key>Bold</key><integer>1</integer>"), "the font's Bold is not true or false"},
        {font("<key>Name</key><string/>"), "Font has the unknown key \"Name\""},
        {"<key>Font</key><array/>", "Font is not a dictionary"},
    };
    choose("Broken");
    const std::string file = std::string(kMine) + "Broken/Theme.plist";
    for (const auto& [root, reason] : cases) {
        tree.write(file, plist("")); // after a valid theme, a failure is logged again
        EXPECT_EQ(ui::currentTheme()->name(), "Broken");
        tree.write(file, plist(root));
        EXPECT_EQ(ui::currentTheme()->name(), "") << root;
        ui::currentTheme();
        EXPECT_THAT(tree.log.take(),
                    ElementsAre("cannot use the theme " + tree.path(file) + ": " + reason));
    }
    tree.write(file, plist("<key>Font</key><dict><key>Size</key><real>18</real></dict>"));
    EXPECT_EQ(ui::currentTheme()->name(), "Broken");
    tree.write(file, "<plist><array/></plist>");
    ui::currentTheme();
    EXPECT_TRUE(tree.log.contains("the root is not a dictionary"));
}

TEST_F(ThemeTest, AMissingThemeIsLoggedWithThePathAtWhichItIsExpected) {
    const std::string mine = tree.path(kMine);
    const std::pair<std::string, std::string> cases[] = {
        {"Gone", "cannot use the theme " + mine + "Gone/Theme.plist: "},
        {"../Gone", "cannot use the theme ../Gone: it is not the name of a folder"},
        {".", "cannot use the theme .: it is not the name of a folder"},
    };
    for (const auto& [chosen, line] : cases) {
        choose(chosen);
        EXPECT_EQ(ui::currentTheme()->name(), "");
        EXPECT_TRUE(tree.log.contains(line)) << chosen;
    }
}

TEST_F(ThemeTest, FollowsTheChoiceTheFileAndTheAppearance) {
    write(kMine + std::string("One"), themeWith("01"));
    int changes = 0;
    const auto watch = ui::onThemeChange([&] { ++changes; });
    preferences[appHalvex4Prefs].set("Other", 1);
    appearance.setDark(true); // without a theme, no colour depends on it
    appearance.setDark(false);
    EXPECT_EQ(changes, 0);

    choose("One");
    EXPECT_EQ(changes, 1);
    EXPECT_DOUBLE_EQ(blue() * 255, 1);
    appearance.setHighContrast(true);
    EXPECT_EQ(changes, 2);

    write(kMine + std::string("One"), themeWith("02"));
    EXPECT_TRUE(mainThread.runUntil([] { return blue() * 255 > 1.5; }, 20s));
    choose("Later");
    EXPECT_EQ(blue(), -1);
    write(kMine + std::string("Later"), themeWith("03"));
    EXPECT_TRUE(mainThread.runUntil([] { return blue() * 255 > 2.5; }, 20s));
    preferences[appHalvex4Prefs].remove("Theme");
    EXPECT_EQ(blue(), -1);
}

TEST_F(ThemeTest, AWatchCanBeDestroyedByItsOwnHandlerAndTheNextOneStartsAfresh) {
    write(kMine + std::string("One"), themeWith("01"));
    std::unique_ptr<Watch> watch;
    watch = ui::onThemeChange([&] { watch.reset(); });
    choose("One");
    EXPECT_EQ(watch, nullptr);
    int changes = 0;
    watch = ui::onThemeChange([&] { ++changes; });
    choose("");
    EXPECT_EQ(changes, 1);
}

} // namespace
