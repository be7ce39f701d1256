#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/XServer.h"

#include <QImage>
#include <QRegularExpression>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::BarProcess;
using test::XServer;

namespace {

/// The panel on a screen of its own, without a window manager, shown by the command line.
class X11Panel : public testing::Test {
  protected:
    X11Panel() {
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", x.display);
        environment.insert("QT_QPA_PLATFORM", "xcb");
        panel.setProcessEnvironment(environment);
        panel.start(HALVEX_CTL, {"hud", "show", "--title", "Clock"});
        window = x.act({"search", "--sync", "--onlyvisible", "--name", "^Clock$"}).trimmed();
    }
    ~X11Panel() override {
        panel.kill();
        panel.waitForFinished(5000);
    }

    QRect geometry() const {
        const QString text = x.act({"getwindowgeometry", "--shell", window});
        const auto number = [&](const QString& name) {
            return QRegularExpression(name + "=(-?[0-9]+)").match(text).captured(1).toInt();
        };
        return {number("X"), number("Y"), number("WIDTH"), number("HEIGHT")};
    }
    bool becomes(const QRect& wanted) const {
        return BarProcess::eventually([&] { return geometry() == wanted; });
    }
    bool prints(const QByteArray& line) {
        return BarProcess::eventually([&] {
            panel.waitForReadyRead(20);
            printed += panel.readAllStandardOutput();
            return printed.contains(line);
        });
    }
    void pointAt(QPoint point) const {
        x.act({"mousemove", QString::number(point.x()), QString::number(point.y())});
    }
    void drag(QPoint from, QPoint by) const {
        pointAt(from);
        x.act({"mousedown", "1"});
        pointAt(from + by / 2);
        pointAt(from + by);
        x.act({"mouseup", "1"});
    }

    XServer x;
    QProcess panel;
    QString window;
    QByteArray printed;
};

TEST_F(X11Panel, IsDraggedResizedClickedAndClosed) {
    ASSERT_FALSE(window.isEmpty()) << panel.readAllStandardError().toStdString();
    ASSERT_TRUE(becomes({340, 31, 320, 219})) << geometry().x() << ' ' << geometry().y();
    drag({500, 150}, {-100, 20});
    EXPECT_TRUE(becomes({240, 51, 320, 219})) << geometry().x() << ' ' << geometry().y();
    drag({240 + 315, 51 + 214}, {60, -40});
    EXPECT_TRUE(becomes({240, 51, 380, 179})) << geometry().width() << ' ' << geometry().height();
    EXPECT_FALSE(printed.contains("click")) << "a drag is none";

    pointAt({400, 150});
    x.act({"click", "1"});
    EXPECT_TRUE(prints("click\n"));
    pointAt({240 + 380 - 10, 51 + 19 + 9});
    x.act({"click", "1"});
    EXPECT_TRUE(prints("information\n"));
    x.act({"key", "space"}); // the button has the keyboard since it was clicked
    EXPECT_TRUE(prints("information\ninformation\n")) << printed.toStdString();
    x.act({"key", "Escape"});
    EXPECT_TRUE(panel.waitForFinished(5000));
    EXPECT_EQ(panel.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(panel.exitCode(), 0);
}

} // namespace
