#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/XServer.h"

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

    bool prints(const QByteArray& line) {
        return BarProcess::eventually([&] {
            panel.waitForReadyRead(20);
            printed += panel.readAllStandardOutput();
            return printed.contains(line);
        });
    }
    void clickAt(int column, int row) const {
        x.act({"mousemove", QString::number(column), QString::number(row), "click", "1"});
    }
    XServer x;
    QProcess panel;
    QString window;
    QByteArray printed;
};

TEST_F(X11Panel, IsClickedAndClosed) {
    ASSERT_FALSE(window.isEmpty()) << panel.readAllStandardError().toStdString();
    clickAt(500, 150); // where a screen without window manager has it
    EXPECT_TRUE(prints("click\n"));
    clickAt(340 + 320 - 10, 31 + 19 + 9);
    EXPECT_TRUE(prints("information\n"));
    x.act({"key", "space"}); // the button has the keyboard since it was clicked
    EXPECT_TRUE(prints("information\ninformation\n")) << printed.toStdString();
    x.act({"key", "Escape"});
    EXPECT_TRUE(panel.waitForFinished(5000));
    EXPECT_EQ(panel.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(panel.exitCode(), 0);
}

} // namespace
