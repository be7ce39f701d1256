#include "identifiers/ExportedIdentifiers.h"
#include "tests/desktop/support/TestBundle.h"
#include "tests/desktop/support/XServer.h"

#include <chrono>
#include <thread>

using namespace test;

namespace {

constexpr int kBarHeight = 22;

/// A bar with, from left to right, an item without a menu, the product's clock and its own clock.
/// A window manager has bound Super+M to "halvexctl menubar focus", and a text field has the focus.
class X11Keyboard : public testing::Test {
  protected:
    X11Keyboard() {
        bar.start({HALVEX_TIME_MENU, QString::fromStdString(extra.path)});
        replaceContents(folder.file("rc.xml"),
                        R"(<openbox_config xmlns="http://openbox.org/3.4/rc"><keyboard>
                           <keybind key="W-m"><action name="Execute"><command>)" HALVEX_CTL
                        R"( menubar focus</command></action></keybind>
                           </keyboard></openbox_config>)");
        Settings settings = x.settings();
        settings.emplace_back("DBUS_SESSION_BUS_ADDRESS", bar.bus->address());
        windowManager.setProcessEnvironment(environmentWith(settings));
        windowManager.start("openbox", {"--sm-disable", "--config-file",
                                        QString::fromStdString(folder.file("rc.xml"))});
        EXPECT_TRUE(eventually([&] { return x.hasWindowManager(); }));
        x.showTextField();
        EXPECT_TRUE(eventually([&] {
            x.act({"key", "a"});
            return !x.typed().empty();
        })) << "the window manager has focused the text field";
        EXPECT_TRUE(showsNothing());
    }
    ~X11Keyboard() override {
        windowManager.kill();
        windowManager.waitForFinished();
    }

    /// Returns whether the text field receives this key.
    bool typesInto(const std::string& letter) {
        x.typed();
        x.act({"key", QString::fromStdString(letter)});
        return eventually([&] { return x.typed().find(letter) != std::string::npos; });
    }
    /// The window manager has grabbed the keyboard until the keys are released.
    void pressShortcut() {
        x.act({"keydown", "super", "keydown", "m"});
        std::this_thread::sleep_for(std::chrono::milliseconds(200));
        x.act({"keyup", "m", "keyup", "super"});
        x.typed();
    }
    bool showsMenu() {
        return eventually([&] { return bar.picture().height() > kBarHeight; });
    }
    bool showsHighlightOnly() {
        return eventually([&] {
            const QImage picture = bar.picture();
            return picture.height() == kBarHeight && hasHighlight(picture);
        });
    }
    bool showsNothing() {
        return eventually([&] {
            const QImage picture = bar.picture();
            return picture.height() == kBarHeight && !hasHighlight(picture);
        });
    }
    /// Whether the row above all texts is not only background.
    static bool hasHighlight(const QImage& picture) {
        constexpr int kRow = 3;
        for (int column = 1; column < picture.width(); ++column)
            if (picture.pixel(column, kRow) != picture.pixel(0, kRow))
                return true;
        return false;
    }

    const XServer x;
    BarProcess bar{{}, x.settings()};
    const TestBundle extra{bar, "HasNoMenu"};
    const TemporaryFolder folder;
    QProcess windowManager;
};

TEST_F(X11Keyboard, PressesAnItemWithoutAMenu) {
    pressShortcut();
    EXPECT_TRUE(showsHighlightOnly());
    x.act({"key", "shift+Return"});
    EXPECT_TRUE(bar.logs("click shift 1")) << bar.log();
    EXPECT_TRUE(typesInto("b"));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST_F(X11Keyboard, MovesOnBetweenItemsAndLeavesTheFocusWhereItWas) {
    struct Row {
        QStringList keys;
        bool opensMenu;
    };
    for (const auto& [keys, opensMenu] :
         {Row{{"Right"}, true}, Row{{"Left"}, true}, Row{{"Right", "Right"}, true},
          Row{{"Right", "Left"}, false}, Row{{"Tab", "Right", "Right"}, false},
          Row{{"Right", "Right", "Right", "Left"}, true}}) {
        pressShortcut();
        ASSERT_TRUE(showsHighlightOnly()) << keys.join(' ').toStdString() << bar.log();
        for (const QString& key : keys)
            x.act({"key", key});
        EXPECT_TRUE(opensMenu ? showsMenu() : showsHighlightOnly()) << keys.join(' ').toStdString();
        EXPECT_EQ(x.typed(), "") << keys.join(' ').toStdString();
        x.act({"key", "Escape"});
        EXPECT_TRUE(showsNothing());
        EXPECT_TRUE(typesInto("c")) << keys.join(' ').toStdString();
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST_F(X11Keyboard, LosesNoKeysThatArriveWhileMenusSwitch) {
    for (int i = 0; i < 5; ++i) {
        bar.call("Focus");
        x.typed();
        x.act({"key", "--delay", "0", "Right", "Right", "Right", "Right", "Left"});
        EXPECT_TRUE(showsHighlightOnly()) << "five keys lead back to the first item";
        EXPECT_EQ(x.typed(), "");
        x.act({"key", "Escape"});
        EXPECT_TRUE(typesInto("d"));
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST_F(X11Keyboard, EndsWhenTheSelectedItemIsRemovedOrTheMouseIsUsed) {
    bar.call("Focus");
    ASSERT_TRUE(showsHighlightOnly());
    x.act({"mousemove", "300", "200", "click", "1"});
    EXPECT_TRUE(typesInto("e")) << "after a click elsewhere";
    bar.call("Focus");
    ASSERT_TRUE(showsHighlightOnly());
    bar.remove(kTestExtra);
    EXPECT_TRUE(typesInto("f")) << "after the removal";
    bar.call("Focus");
    ASSERT_TRUE(showsMenu());
    bar.remove(HalvexMenuID);
    EXPECT_TRUE(typesInto("g")) << "after the removal of an item with an open menu";
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST_F(X11Keyboard, ReportsThatAnotherProgramHasTheKeyboard) {
    x.grabKeyboard(true);
    EXPECT_EQ(bar.run({"menubar", "focus"}, HALVEX_CTL), 1);
    EXPECT_TRUE(bar.logs("another program has grabbed the keyboard")) << bar.log();
    x.grabKeyboard(false);
    EXPECT_EQ(bar.run({"menubar", "focus"}, HALVEX_CTL), 0);
    EXPECT_TRUE(showsHighlightOnly());
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
