#include "apps/preferences/PreferencesWindow.h"

#include "identifiers/ExportedIdentifiers.h"
#include "platform/qt/QtMainThread.h"
#include "tests/paths/SupportTree.h"
#include "tests/support/Fakes.h"

#include <QCheckBox>
#include <QLabel>
#include <QTest>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <atomic>

using testing::Contains;
using testing::HasSubstr;

using namespace apps;

namespace {

constexpr const char* kFolder = "~/Library/PreferencePanes";

std::string info(const std::string& identifier, const std::string& name) {
    return "<plist version=\"1.0\"><dict><key>CFBundleIdentifier</key><string>" + identifier +
           "</string><key>CFBundleName</key><string>" + name +
           "</string><key>CFBundleShortVersionString</key><string>4.5</string></dict></plist>";
}

class PreferencesWindowTest : public testing::Test {
  protected:
    void SetUp() override {
        tree.write(file("Halvex Pro.prefPane"), info(HalvexPrefsBundleID, "Halvex Pro"));
        for (const auto& [name, identifier] :
             {std::pair("HalvexTimeMenu", HalvexMenuID), std::pair("Other", "some.other.item")})
            tree.write(file("Halvex Pro.prefPane/Contents/PlugIns/" + std::string(name) + ".menu"),
                       info(identifier, name));
        tree.write(file("Foreign.prefPane"), info("foreign.pane", "Foreign"));
        tree.write(file("NoIdentifier.prefPane"), "<plist version=\"1.0\"><dict/></plist>");
        tree.write(file("Truncated.prefPane"), "<plist version=\"1.0\"><dict>");
        tree.write(file("Folder"), info("foreign.pane", "Foreign"));
    }
    /// Shared by the tests, because its queue is never destroyed.
    static platform::qt::QtMainThread& mainLoop() {
        static platform::qt::QtMainThread loop;
        return loop;
    }
    static std::string file(const std::string& pane) {
        return kFolder + ('/' + pane) + "/Contents/Info.plist";
    }
    std::string path(const std::string& pane) { return tree.path(kFolder) + '/' + pane; }
    std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const QLabel* label : window.findChildren<QLabel*>())
            all.push_back(label->text().toStdString());
        return all;
    }
    QCheckBox* box() const { return window.findChild<QCheckBox*>(); }
    void expectBox(bool checked) const {
        ASSERT_TRUE(QTest::qWaitFor([this] { return box() && box()->isEnabled(); }));
        EXPECT_EQ(box()->isChecked(), checked);
    }
    void expectToggled(bool checked) const {
        QTest::keyClick(box(), Qt::Key_Space);
        expectBox(checked);
    }

    platform::ScopedService<platform::MainThread> mainLoopInPlace{mainLoop()};
    test::SupportTree tree{{kFolder}};
    test::RecordingMenuBar bar;
    test::ManualClock clock;
    test::RecordingWorkspace workspace;
    std::atomic<bool> isBarRunning = true;
    std::string problem, thirdPartyProblems;
    PreferencesWindow window{{.isRunning = [this] { return isBarRunning.load(); },
                              .problem = [this](const auto&) { return problem; },
                              .thirdPartyProblems = [this] { return thirdPartyProblems; }}};
};

TEST_F(PreferencesWindowTest, ShowsAndLogsWhyAPaneCannotBeShown) {
    const std::pair<const char*, const char*> cases[] = {
        {"Missing.prefPane", "It does not exist. Check the path."},
        {"Folder", "It is not a preference pane: its name must end in \".prefPane\"."},
        {"NoIdentifier.prefPane", "Its Info.plist has no CFBundleIdentifier. Install it again."},
        {"Truncated.prefPane", "It cannot be read (Info.plist: "},
    };
    for (const auto& [pane, error] : cases) {
        window.showPane(findPaneAtPath(path("Foreign.prefPane")));
        EXPECT_EQ(window.windowTitle(), "Foreign");
        window.showPane(findPaneAtPath(path(pane)));
        EXPECT_FALSE(window.pane()) << pane;
        EXPECT_THAT(texts(), Contains(path(pane)));
        EXPECT_THAT(texts(), Contains(HasSubstr(error)));
        EXPECT_THAT(tree.log.take(), Contains(HasSubstr(error))) << pane;
    }
}

TEST_F(PreferencesWindowTest, ShowsAPaneByIdentifierPreferringTheOpenOneThenTheSystemFolder) {
    window.showPane(findPaneWithIdentifier("foreign.pane", window.pane()));
    ASSERT_TRUE(window.pane());
    EXPECT_EQ(window.pane()->bundlePath(), path("Foreign.prefPane"));
    EXPECT_THAT(texts(), Contains("Version 4.5"));

    tree.write("/Library/PreferencePanes/Z.prefPane/Contents/Info.plist",
               info("foreign.pane", "Shared"));
    EXPECT_EQ(findPaneWithIdentifier("foreign.pane", window.pane()).pane, window.pane());
    EXPECT_EQ(findPaneWithIdentifier("foreign.pane", nullptr).pane->bundlePath(),
              "/Library/PreferencePanes/Z.prefPane");
    EXPECT_EQ(
        findPaneWithIdentifier("foreign", nullptr).error,
        "No pane with this identifier is installed. Install it in ~/Library/PreferencePanes.");
}

TEST_F(PreferencesWindowTest, InstallsAndLoadsAMenuExtraOrRemovesItWhenItsBoxIsToggled) {
    bar.onAdd = [this](const std::string&) {
        bar.loaded.emplace_back(HalvexMenuID);
        return 0;
    };
    window.showPane(findPaneAtPath(path("Halvex Pro.prefPane")));
    EXPECT_EQ(window.findChildren<QCheckBox*>().size(), 1) << "an unknown item has no box";
    expectBox(false);
    EXPECT_EQ(box()->text(), "HalvexTimeMenu");
    const auto copy = std::string(test::kUserMaker) + "/Menu Extras/HalvexTimeMenu.menu";
    expectToggled(true);
    EXPECT_TRUE(tree.exists(copy));
    expectToggled(false);
    EXPECT_FALSE(tree.exists(copy));
}

TEST_F(PreferencesWindowTest, ShowsTheBarsItemsWithoutStartingItAndReportsFailures) {
    bar.onAdd = [](const std::string&) { return -2; };
    isBarRunning = false;
    window.showPane(findPaneAtPath(path("Halvex Pro.prefPane")));
    expectBox(false);
    EXPECT_THAT(bar.queried, testing::IsEmpty()) << "a query does not start the bar";

    isBarRunning = true;
    problem = "refused: it is broken";
    expectToggled(false);
    EXPECT_THAT(texts(), Contains("HalvexTimeMenu could not be turned on. See the system log."));
    EXPECT_THAT(texts(), Contains("refused: it is broken"));

    problem.clear();
    thirdPartyProblems = "Weather: disabled: it crashed the menu bar (click)";
    bar.loaded.emplace_back(HalvexMenuID);
    window.refresh();
    EXPECT_TRUE(QTest::qWaitFor([this] { return box()->isChecked(); }));
    EXPECT_THAT(texts(), testing::Not(Contains("refused: it is broken")));
    EXPECT_THAT(texts(), Contains(thirdPartyProblems));
}

} // namespace
