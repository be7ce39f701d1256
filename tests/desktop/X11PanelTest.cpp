#include "tests/desktop/support/XServer.h"

#include <gmock/gmock.h>

using test::XServer;

namespace {

bool isBackground(const QImage& picture, QPoint point) {
    return (picture.pixel(point) & 0xFFFFFF) == XServer::kBackground;
}

/// Returns the bounds of everything but the background.
QRect occupied(const QImage& picture) {
    QRect area;
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            if (!isBackground(picture, {x, y}))
                area |= QRect(x, y, 1, 1);
    return area;
}

/// A panel of the command line on a screen without a window manager or compositing manager.
class X11Panel : public testing::Test {
  protected:
    X11Panel() : X11Panel({"hud", "show", "--title", "Clock"}, "^Clock$") {}
    X11Panel(const QStringList& arguments, const QString& title) {
        panel.setProcessEnvironment(test::environmentWith(x.settings()));
        panel.start(HALVEX_CTL, arguments);
        window = x.act({"search", "--sync", "--onlyvisible", "--name", title}).trimmed();
    }
    ~X11Panel() override {
        panel.kill();
        panel.waitForFinished(5000);
    }

    bool prints(const QByteArray& line) {
        return test::eventually([&] {
            panel.waitForReadyRead(20);
            printed += panel.readAllStandardOutput();
            return printed.contains(line);
        });
    }

    XServer x;
    QProcess panel;
    QString window;
    QByteArray printed;
};

TEST_F(X11Panel, IsCutToItsRoundedOutlineAndShowsTheResizeIndicator) {
    const auto expectPanel = [&](const QRect& frame) {
        EXPECT_TRUE(test::eventually([&] { return occupied(x.picture()) == frame; }));
        const QImage picture = x.picture();
        for (const int column : {frame.left(), frame.right()})
            for (const int row : {frame.top(), frame.bottom()}) {
                const QPoint corner(column, row);
                const QPoint inwards(column == frame.left() ? 1 : -1, row == frame.top() ? 1 : -1);
                EXPECT_TRUE(isBackground(picture, corner + inwards)) << column << ' ' << row;
                EXPECT_FALSE(isBackground(picture, corner + inwards * 2)) << column << ' ' << row;
            }
        // The diagonal into the panel crosses three bright lines, at even distances.
        for (int distance = 4; distance < 10; ++distance) {
            const QPoint point = frame.bottomRight() - QPoint(distance, distance);
            EXPECT_EQ(qRed(picture.pixel(point)) > 50, distance % 2 == 0) << distance;
        }
    };
    expectPanel({340, 31, 320, 219});
    x.act({"mousemove", "655", "245", "mousedown", "1", "mousemove", "675", "255", "mouseup", "1"});
    expectPanel({340, 31, 340, 229});
}

TEST_F(X11Panel, ReportsClicksAndClosesOnEscape) {
    ASSERT_FALSE(window.isEmpty()) << panel.readAllStandardError().toStdString();
    x.clickAt(500, 150); // without a window manager, the panel is in the middle of the screen
    EXPECT_TRUE(prints("click\n"));
    x.clickAt(340 + 320 - 10, 31 + 19 + 9);
    EXPECT_TRUE(prints("information\n"));
    x.act({"key", "space"}); // the click has focused the button
    EXPECT_TRUE(prints("information\ninformation\n")) << printed.toStdString();
    x.act({"key", "Escape"});
    EXPECT_TRUE(panel.waitForFinished(5000));
    EXPECT_EQ(panel.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(panel.exitCode(), 0);
}

/// The panel with all kinds of controls, whose frame is 340 x 279 points at (330, 10).
struct X11Controls : X11Panel {
    X11Controls() : X11Panel({"panel"}, "^Controls$") {}
};

TEST_F(X11Controls, AreUsedWithTheMouseAndTheKeyboard) {
    ASSERT_FALSE(window.isEmpty()) << panel.readAllStandardError().toStdString();
    x.clickAt(600, 52); // the field: without a window manager, this gives it the focus
    x.act({"type", "Oslo"});
    EXPECT_TRUE(prints("edited Oslo\n")) << printed.toStdString();
    x.act({"key", "Return"});
    EXPECT_TRUE(prints("committed Oslo\nOK\n")) << printed.toStdString();
    x.act({"key", "Tab", "key", "Tab", "key", "Right", "key", "Tab", "key", "Down"});
    EXPECT_TRUE(prints("rate 3.000000\nselected 2\n")) << printed.toStdString();
    x.act({"key", "Tab", "key", "Right"});
    EXPECT_TRUE(prints("chart 6\n")) << printed.toStdString();
    x.clickAt(330 + 96 + 3, 80); // the left end of the first slider
    EXPECT_TRUE(prints("volume 0.000000\n")) << printed.toStdString();
    const QColor ring(0x34, 0x78, 0xe0);
    EXPECT_TRUE(test::eventually([&] { return x.picture().pixelColor(427, 80) == ring; }))
        << x.picture().pixelColor(427, 80).name().toStdString();
    x.act({"key", "Escape"});
    EXPECT_TRUE(panel.waitForFinished(5000));
}

TEST_F(X11Panel, FollowsTheStartAndExitOfACompositingManager) {
    const QRect frame(340, 31, 320, 219);
    EXPECT_TRUE(test::eventually([&] { return occupied(x.picture()) == frame; }));
    for (int start = 0; start < 2; ++start) {
        x.claimCompositing(true);
        EXPECT_TRUE(test::eventually([&] {
            return occupied(x.picture()) == frame.adjusted(-14, -14, 14, 14);
        })) << "with its shadow";
        x.clickAt(500, 150);
        EXPECT_TRUE(prints("click\n"));
        x.claimCompositing(false);
        EXPECT_TRUE(test::eventually([&] { return occupied(x.picture()) == frame; }));
    }
    EXPECT_EQ(printed, "click\nclick\n");
    EXPECT_TRUE(isBackground(x.picture(), frame.topLeft() + QPoint(1, 1)));
}

TEST_F(X11Panel, LetsTheMouseThroughItsShadow) {
    x.claimCompositing(true);
    const auto windowAt = [&](int column) {
        x.pointAt(column, 100);
        return x.act({"getmouselocation", "--shell"}).section("WINDOW=", 1).trimmed();
    };
    EXPECT_TRUE(test::eventually([&] { return occupied(x.picture()).left() == 340 - 14; }));
    EXPECT_TRUE(test::eventually([&] { return windowAt(345) == window; }));
    EXPECT_NE(windowAt(335), window);
}

TEST_F(X11Panel, ClosesAndMinimizesWithTheMouse) {
    x.manageWindowOf(0); // receives the requests to the window manager
    EXPECT_TRUE(test::eventually([&] { return !occupied(x.picture()).isEmpty(); }));
    x.pointAt(500, 40);
    x.act({"click", "--repeat", "2", "--delay", "50", "1"});
    EXPECT_TRUE(test::eventually([&] { return x.isAsked("WM_CHANGE_STATE", window.toUInt()); }));
    x.clickAt(340 + 9, 31 + 9);
    EXPECT_TRUE(panel.waitForFinished(5000));
    EXPECT_EQ(panel.exitCode(), 0);
}

} // namespace
