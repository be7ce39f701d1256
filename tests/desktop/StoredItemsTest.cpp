#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/TestBundle.h"

#include <gmock/gmock.h>

#include <map>

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

/// Waits until the list on disk names an item or, with @p named false, does not.
bool stores(const BarProcess& bar, const std::string& identifier, bool named = true) {
    return eventually([&] {
        const std::string list = contents(listFile(bar));
        return !list.empty() && (list.find(identifier) != std::string::npos) == named;
    });
}

QDBusMessage removal(std::uint32_t reference) {
    auto message = QDBusMessage::createMethodCall(
        "com.quorvanesoftware.MenuBar", "/com/quorvanesoftware/MenuBar",
        "com.quorvanesoftware.MenuBar1", "RemoveMenuExtra");
    message.setArguments({reference, 0});
    return message;
}

TEST(StoredItems, AreRestoredInTheirOrderHoweverTheBarEnded) {
    BarProcess bar;
    ASSERT_TRUE(bar.loads(bar.install(HALVEX_TEST_EXTRA), kTestExtra, 7));
    ASSERT_TRUE(bar.loads(bar.install(HALVEX_TIME_MENU), HalvexMenuID, 3));
    ASSERT_TRUE(stores(bar, HalvexMenuID));
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, HalvexMenuID, kTestExtra));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, HalvexMenuID, kTestExtra));

    for (const char* identifier : {kOwnClock, kTestExtra}) {
        bar.remove(identifier);
        EXPECT_TRUE(stores(bar, identifier, false));
    }
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(HalvexMenuID)) << "removed items are not restored";
    EXPECT_EQ(bar.log().find("is disabled"), std::string::npos) << "a kill is not a crash";
}

TEST(StoredItems, AreTheClockAndTheCalendarAfterTheFirstStartWithAPane) {
    BarProcess bar;
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
    EXPECT_FALSE(fs::exists(listFile(bar))) << "without a pane, the next start is the first";

    ASSERT_EQ(bar.run({"pane", "install"}, HALVEX_CTL), 0) << bar.log();
    const std::vector<std::string> both{HalvexMenuID, HalvexProCalMenuID};
    bar.start();
    EXPECT_TRUE(eventually([&] { return bar.identifiers() == both; })) << bar.log();
    ASSERT_TRUE(stores(bar, HalvexProCalMenuID));
    bar.remove(HalvexMenuID);
    ASSERT_TRUE(stores(bar, HalvexMenuID, false));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(HalvexProCalMenuID));
}

TEST(StoredItems, DoNotIncludeThoseOfTheCommandLineAndStayWithoutTheirBundle) {
    BarProcess bar;
    const std::string path = bar.install(HALVEX_TEST_EXTRA);
    ASSERT_TRUE(bar.loads(path, kTestExtra));
    bar.start({QString::fromStdString(path), HALVEX_TIME_MENU});
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra, HalvexMenuID));
    bar.stop();
    fs::remove_all(path);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_TRUE(bar.logs("cannot restore menu extra test.extra: no bundle at " + path));
    bar.remove(kOwnClock);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock)) << "the bar would be empty";
    bar.install(HALVEX_TEST_EXTRA);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kTestExtra));
    bar.remove(kTestExtra);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre()) << "the user has removed all items";
}

TEST(StoredItems, AreOnDiskBeforeTheReplyAndBeforeTheItemsCodeRuns) {
    BarProcess bar;
    const TestBundle extra{bar, "HangsWhenUnloaded"};
    bar.add(extra.path);
    bar.kill();
    EXPECT_THAT(contents(listFile(bar)), HasSubstr(kTestExtra));
    bar.start();
    EXPECT_TRUE(bar.loads(extra.path, kTestExtra)) << "being loaded, it was disabled";
    bar.remove(kOwnClock);
    bar.kill();
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kTestExtra));
    bar.bus->connection().send(removal(bar.reference(kTestExtra)));
    EXPECT_TRUE(bar.logs("hanging"));
    bar.kill();
    const auto written = fs::last_write_time(listFile(bar));
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre());
    EXPECT_EQ(bar.stop(), 0);
    EXPECT_EQ(fs::last_write_time(listFile(bar)), written) << "restoring writes nothing";
}

TEST(StoredItems, OfTwoBarsWithTheSameHomeAreMerged) {
    BarProcess bar;
    const BarProcess other({}, {{"HOME", QString::fromStdString(bar.home())}});
    EXPECT_TRUE(bar.loads(bar.install(HALVEX_TEST_EXTRA), kTestExtra, 1));
    EXPECT_TRUE(other.loads(bar.install(HALVEX_TIME_MENU), HalvexMenuID, 2));
    EXPECT_EQ(bar.remove(kOwnClock), 0);
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kTestExtra, HalvexMenuID));
}

TEST(StoredItems, DoNotIncludeThoseThatCannotBeLoaded) {
    BarProcess bar;
    const TestBundle extra{bar, "ThrowsAtStart"};
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(bar.add(extra.path), 0);
    EXPECT_TRUE(bar.logs("cannot load menu extra test.extra"));
    EXPECT_TRUE(stores(bar, kTestExtra, false));
    extra.replaceInInfo("ThrowsAtStart", kFaultless);
    EXPECT_TRUE(bar.loads(extra.path, kTestExtra));
    extra.replaceInInfo(kFaultless, "ThrowsAtStart");
    bar.start();
    EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
    EXPECT_EQ(bar.add(extra.path), 0);
    EXPECT_EQ(bar.stop(), 0);
    EXPECT_TRUE(stores(bar, kTestExtra)) << "it was stored before";
}

TEST(StoredItems, ThatCrashTheBarAreDisabledUntilTheyAreAddedAgainOrUpdated) {
    const std::map<std::string, std::string> stepOfFault{{"CrashesAtStart", "loading"},
                                                         {"CrashesWhenDrawn", "drawing"},
                                                         {"CrashesWhenClicked", "click"},
                                                         {"CrashesWhenTicking", "its own code"}};
    for (const auto& [fault, step] : stepOfFault) {
        SCOPED_TRACE(fault);
        BarProcess bar;
        const TestBundle extra{bar, fault};
        const auto crashes = [&, &step = step] {
            if (step == "click") {
                EXPECT_TRUE(bar.hasLoaded(kTestExtra));
                bar.click(kTestExtra);
            }
            EXPECT_EQ(bar.waitForExit(), -1);
        };
        const auto staysDisabled = [&, &step = step] {
            bar.start();
            EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
            EXPECT_TRUE(bar.logs("menu extra test.extra at " + extra.path.string() +
                                 " is disabled: it crashed the menu bar (" + step + ")"));
            EXPECT_THAT(contents(listFile(bar)), HasSubstr("Step</key>\n\t\t\t<string>" + step));
        };
        for (int attempt = 0; attempt < 2; ++attempt) {
            bar.add(extra.path);
            crashes();
            staysDisabled();
            bar.kill();
            staysDisabled();
        }
        extra.replaceInInfo(fault, kFaultless);
        EXPECT_TRUE(bar.loads(extra.path, kTestExtra)) << "added again";
        extra.replaceInInfo(kFaultless, fault);
        bar.stop();
        bar.launch();
        crashes();
        staysDisabled();
        bar.stop();
        extra.replaceInInfo(fault, kFaultless);
        extra.replaceInInfo("CFBundleVersion</key>\n\t<string>1.0",
                            "CFBundleVersion</key>\n\t<string>1.1");
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock, kTestExtra)) << "another version";
        EXPECT_EQ(bar.stop(), 0) << bar.log();
        EXPECT_EQ(contents(listFile(bar)).find("Step"), std::string::npos);
    }
}

TEST(StoredItems, ThatAreUnreadableAreReplacedByTheBarsOwnClock) {
    BarProcess bar;
    const std::pair<std::string, std::string> cases[] = {
        {"\x01garbage", "line 1"},
        {"<plist><array/></plist>", "no array Items"},
        {"<plist><dict><key>Items</key><string>Clock</string></dict></plist>", "no array Items"},
        {std::string(300, 'x') + '\0', ""},
        {"<plist><dict><key>Items</key><array><string>x</string>"
         "<dict><key>Identifier</key><string>y</string></dict>"
         "<dict><key>Identifier</key><string>com.apple.menuextra.clock</string>"
         "<key>Path</key><string>Clock.menu</string><key>Position</key><integer>2</integer></dict>"
         "<dict><key>Identifier</key><string>z</string><key>Path</key><string>/z</string>"
         "<key>Position</key><integer>99999999999</integer></dict></array></dict></plist>",
         "skipped a menu bar item"},
    };
    for (const auto& [bytes, reason] : cases) {
        bar.stop();
        replaceContents(listFile(bar), bytes);
        replaceContents(productFolder(bar) / "Menu Bar Step", bytes);
        bar.start();
        EXPECT_THAT(bar.identifiers(), ElementsAre(kOwnClock));
        EXPECT_TRUE(bar.logs(reason)) << bytes;
        EXPECT_TRUE(bar.logs("items from " + listFile(bar).string())) << bytes;
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(StoredItems, ThatCannotBeWrittenAreLoadedAllTheSame) {
    BarProcess bar;
    bar.stop();
    fs::remove_all(bar.home() / "Library");
    replaceContents(bar.home() / "Library", "in the way");
    bar.start({"--admit=all"});
    EXPECT_TRUE(bar.loads(HALVEX_TEST_EXTRA, kTestExtra));
    EXPECT_TRUE(bar.logs("which menu extras crash the menu bar"));
    EXPECT_TRUE(bar.logs("cannot write the menu bar's items to " + listFile(bar).string()));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
