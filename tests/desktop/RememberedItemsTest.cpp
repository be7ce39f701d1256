#include "menuextras/ExportedIdentifiers.h"
#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/SpoiltBundle.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace fs = std::filesystem;
using test::BarProcess;
using test::contents;
using test::replaceContents;
using test::SpoiltBundle;
using testing::ElementsAre;

namespace {

constexpr const char* kOwnClock = "com.apple.menuextra.clock";
constexpr const char* kTestExtra = "test.extra";

fs::path productFolder(const BarProcess& bar) {
    return bar.home() / "Library/Application Support/Quorvane Software/Halvex Pro";
}
fs::path listFile(const BarProcess& bar) {
    return productFolder(bar) / "Menu Bar Items.plist";
}

bool addAndWait(BarProcess& bar, const std::string& path, const char* identifier,
                int position = 999) {
    return bar.add(path, position) == 0 &&
           BarProcess::eventually([&] { return bar.reference(identifier) != 0; });
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
    const SpoiltBundle extra(bar);
    ASSERT_TRUE(addAndWait(bar, extra.path.string(), kTestExtra, 7));
    ASSERT_TRUE(addAndWait(bar, bar.install(HALVEX_TIME_MENU), HalvexMenuID, 3));
    ASSERT_TRUE(remembers(bar, HalvexMenuID));
    const auto before = bar.identifiers();
    EXPECT_THAT(before, ElementsAre(kOwnClock, HalvexMenuID, kTestExtra));
    bar.kill();
    bar.start();
    EXPECT_EQ(bar.identifiers(), before);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
    bar.start();
    EXPECT_EQ(bar.identifiers(), before);

    for (const char* identifier : {kOwnClock, kTestExtra}) {
        bar.call("RemoveMenuExtra", {bar.reference(identifier), 0});
        EXPECT_TRUE(remembers(bar, identifier, false));
    }
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(HalvexMenuID)) << "what was taken out stays out";
    EXPECT_EQ(bar.log().find("left out"), std::string::npos) << "a kill is no crash";
}

TEST(RememberedItems, AreNeitherThoseOfTheCommandLineNorThoseWhoseBundleIsGone) {
    BarProcess bar;
    const SpoiltBundle extra(bar);
    ASSERT_TRUE(addAndWait(bar, extra.path.string(), kTestExtra));
    bar.stop();
    bar.start({QString::fromStdString(extra.path.string()), HALVEX_TIME_MENU});
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra, HalvexMenuID));
    bar.stop();
    fs::remove_all(extra.path);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_TRUE(bar.logs("menu extra test.extra is gone from " + extra.path.string()));
    EXPECT_TRUE(remembers(bar, kTestExtra, false));
}

struct Crash {
    const char* className;
    const char* step;
    bool whenClicked = false;
};

void PrintTo(const Crash& crash, std::ostream* stream) {
    *stream << crash.className;
}

class CrashingItem : public testing::TestWithParam<Crash> {};

TEST_P(CrashingItem, IsLeftOutUntilItIsAddedAgainOrHasAnotherVersion) {
    BarProcess bar;
    const SpoiltBundle extra(bar);
    const std::string path = extra.path.string();
    const auto crash = [&] {
        bar.add(path);
        if (GetParam().whenClicked) {
            EXPECT_TRUE(BarProcess::eventually([&] { return bar.reference(kTestExtra) != 0; }));
            bar.click(kTestExtra);
        }
        EXPECT_TRUE(bar.ends());
    };
    const auto staysOut = [&] {
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
        EXPECT_TRUE(bar.logs("menu extra test.extra at " + path + " is left out: it crashed the " +
                             "menu bar (" + GetParam().step + ")"));
        EXPECT_NE(contents(listFile(bar))
                      .find("<key>Step</key>\n\t\t\t<string>" + std::string(GetParam().step)),
                  std::string::npos)
            << contents(listFile(bar));
    };
    extra.useClass(GetParam().className);
    crash();
    staysOut();
    bar.kill();
    staysOut();
    crash(); // it was given another chance
    staysOut();

    extra.replaceInInfo(GetParam().className, "Calm");
    EXPECT_TRUE(addAndWait(bar, path, kTestExtra)) << "added again";
    extra.replaceInInfo("Calm", GetParam().className);
    bar.stop();
    bar.launch();
    if (GetParam().whenClicked) {
        EXPECT_TRUE(BarProcess::eventually([&] { return bar.reference(kTestExtra) != 0; }));
        bar.click(kTestExtra);
    }
    EXPECT_TRUE(bar.ends()) << "it is as bad as it was";
    staysOut();
    bar.stop();
    extra.replaceInInfo(GetParam().className, "Calm");
    extra.setVersion("1.1");
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra)) << "another version";
    EXPECT_EQ(bar.stop(), 0) << bar.log();
    EXPECT_EQ(contents(listFile(bar)).find("Step"), std::string::npos);
}

INSTANTIATE_TEST_SUITE_P(, CrashingItem,
                         testing::Values(Crash{"CrashesAtStart", "loading"},
                                         Crash{"CrashesWhenDrawn", "first drawing"},
                                         Crash{"CrashesWhenClicked", "click", true}));

TEST(RememberedItems, ThatNobodyCanReadAreReplacedByTheBarsOwnClock) {
    BarProcess bar;
    const std::pair<std::string, std::string> cases[] = {
        {"\x01garbage", "line 1"},
        {"<plist><array/></plist>", "there is no array of Items"},
        {"<plist><dict><key>Items</key><string>Clock</string></dict></plist>",
         "there is no array of Items"},
        {std::string(300, 'x') + '\0', ""},
    };
    for (const auto& [bytes, reason] : cases) {
        bar.stop();
        replaceContents(listFile(bar), bytes);
        replaceContents(productFolder(bar) / "Menu Bar Step", bytes);
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
        EXPECT_TRUE(bar.logs("cannot be read from " + listFile(bar).string())) << bytes;
        EXPECT_TRUE(bar.logs(reason)) << bytes;
    }
    bar.stop();
    replaceContents(listFile(bar), R"(<plist><dict><key>Items</key><array>
        <string>x</string><dict><key>Identifier</key><string>y</string></dict>
        <dict><key>Identifier</key><string>com.apple.menuextra.clock</string>
              <key>Path</key><string>Clock.menu</string><key>Position</key><integer>2</integer></dict>
        <dict><key>Identifier</key><string>z</string>
              <key>Path</key><string>/z</string><key>Position</key><integer>99999999999</integer></dict>
        </array></dict></plist>)");
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_TRUE(bar.logs("is passed over in " + listFile(bar).string()));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(RememberedItems, ThatCannotBeWrittenStopNothing) {
    BarProcess bar;
    bar.stop();
    fs::remove_all(bar.home() / "Library");
    replaceContents(bar.home() / "Library", "in the way");
    bar.start({"--admit=all"});
    EXPECT_TRUE(addAndWait(bar, HALVEX_TEST_EXTRA, kTestExtra));
    EXPECT_TRUE(bar.logs("no item that crashes this menu bar will be left out"));
    EXPECT_TRUE(bar.logs("the menu bar's items cannot be written to " + listFile(bar).string()));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
