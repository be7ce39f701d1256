#include "menuextras/ExportedIdentifiers.h"
#include "tests/desktop/support/SpoiltBundle.h"

#include <gmock/gmock.h>

namespace fs = std::filesystem;
using namespace test;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

fs::path productFolder(const BarProcess& bar) {
    return bar.home() / "Library/Application Support/Quorvane Software/Halvex Pro";
}
fs::path listFile(const BarProcess& bar) {
    return productFolder(bar) / "Menu Bar Items.plist";
}

/// Waits until the list on the disk names an item, or does not.
bool remembers(const BarProcess& bar, const std::string& identifier, bool named = true) {
    return BarProcess::eventually([&] {
        const std::string list = contents(listFile(bar));
        return !list.empty() && (list.find(identifier) != std::string::npos) == named;
    });
}

TEST(RememberedItems, ComeBackInTheirOrderHoweverTheBarEnded) {
    BarProcess bar;
    ASSERT_TRUE(bar.has(bar.install(HALVEX_TEST_EXTRA), kTestExtra, 7));
    ASSERT_TRUE(bar.has(bar.install(HALVEX_TIME_MENU), HalvexMenuID, 3));
    ASSERT_TRUE(remembers(bar, HalvexMenuID));
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, HalvexMenuID, kTestExtra));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, HalvexMenuID, kTestExtra));

    for (const char* identifier : {kOwnClock, kTestExtra}) {
        bar.remove(identifier);
        EXPECT_TRUE(remembers(bar, identifier, false));
    }
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(HalvexMenuID)) << "what was taken out stays out";
    EXPECT_EQ(bar.log().find("left out"), std::string::npos) << "a kill is no crash";
}

TEST(RememberedItems, AreNeitherThoseOfTheCommandLineNorThoseWhoseBundleIsGone) {
    BarProcess bar;
    const std::string path = bar.install(HALVEX_TEST_EXTRA);
    ASSERT_TRUE(bar.has(path, kTestExtra));
    bar.stop();
    bar.start({QString::fromStdString(path), HALVEX_TIME_MENU});
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra, HalvexMenuID));
    bar.stop();
    fs::remove_all(path);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_TRUE(bar.logs("menu extra test.extra is gone from " + path));
    EXPECT_TRUE(remembers(bar, kTestExtra, false));
}

TEST(RememberedItems, ThatCrashTheBarAreLeftOutUntilTheyAreAddedAgainOrHaveAnotherVersion) {
    const std::pair<const char*, const char*> cases[] = {{"CrashesAtStart", "loading"},
                                                         {"CrashesWhenDrawn", "first drawing"},
                                                         {"CrashesWhenClicked", "click"},
                                                         {"CrashesWhenTicking", "its own code"}};
    for (const auto& row : cases) {
        const std::string kind = row.first;
        const std::string step = row.second;
        SCOPED_TRACE(kind);
        BarProcess bar;
        const SpoiltBundle extra{bar, kind};
        const auto crashes = [&] {
            if (step == "click") {
                EXPECT_TRUE(bar.loads(kTestExtra));
                bar.click(kTestExtra);
            }
            EXPECT_EQ(bar.ends(), -1);
        };
        const auto staysOut = [&] {
            bar.start();
            EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
            EXPECT_TRUE(bar.logs("menu extra test.extra at " + extra.path.string() +
                                 " is left out: it crashed the menu bar (" + step + ")"));
            EXPECT_THAT(contents(listFile(bar)),
                        HasSubstr("<key>Step</key>\n\t\t\t<string>" + step));
        };
        for (int chance = 0; chance < 2; ++chance) {
            bar.add(extra.path);
            crashes();
            staysOut();
            bar.kill();
            staysOut();
        }
        extra.replaceInInfo(kind, "Calm");
        EXPECT_TRUE(bar.has(extra.path, kTestExtra)) << "added again";
        extra.replaceInInfo("Calm", kind);
        bar.stop();
        bar.launch();
        crashes();
        staysOut();
        bar.stop();
        extra.replaceInInfo(kind, "Calm");
        extra.replaceInInfo("CFBundleVersion</key>\n\t<string>1.0",
                            "CFBundleVersion</key>\n\t<string>1.1");
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra)) << "another version";
        EXPECT_EQ(bar.stop(), 0) << bar.log();
        EXPECT_EQ(contents(listFile(bar)).find("Step"), std::string::npos);
    }
}

TEST(RememberedItems, ThatNobodyCanReadAreReplacedByTheBarsOwnClock) {
    BarProcess bar;
    const std::pair<std::string, std::string> cases[] = {
        {"\x01garbage", "line 1"},
        {"<plist><array/></plist>", "there is no array of Items"},
        {"<plist><dict><key>Items</key><string>Clock</string></dict></plist>",
         "there is no array of Items"},
        {std::string(300, 'x') + '\0', ""},
        {"<plist><dict><key>Items</key><array><string>x</string>"
         "<dict><key>Identifier</key><string>y</string></dict>"
         "<dict><key>Identifier</key><string>com.apple.menuextra.clock</string>"
         "<key>Path</key><string>Clock.menu</string><key>Position</key><integer>2</integer></dict>"
         "<dict><key>Identifier</key><string>z</string><key>Path</key><string>/z</string>"
         "<key>Position</key><integer>99999999999</integer></dict></array></dict></plist>",
         "is passed over in "},
    };
    for (const auto& [bytes, reason] : cases) {
        bar.stop();
        replaceContents(listFile(bar), bytes);
        replaceContents(productFolder(bar) / "Menu Bar Step", bytes);
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
        EXPECT_TRUE(bar.logs(reason)) << bytes;
        EXPECT_TRUE(bar.logs("cannot be read from " + listFile(bar).string())) << bytes;
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(RememberedItems, ThatCannotBeWrittenStopNothing) {
    BarProcess bar;
    bar.stop();
    fs::remove_all(bar.home() / "Library");
    replaceContents(bar.home() / "Library", "in the way");
    bar.start({"--admit=all"});
    EXPECT_TRUE(bar.has(HALVEX_TEST_EXTRA, kTestExtra));
    EXPECT_TRUE(bar.logs("no item that crashes this menu bar will be left out"));
    EXPECT_TRUE(bar.logs("the menu bar's items cannot be written to " + listFile(bar).string()));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
