#include "tests/desktop/support/BarProcess.h"

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::BarProcess;
using testing::HasSubstr;

namespace {

constexpr int kScreenWidth = 1000;

/// An X server of the test's own.
class X11Bar : public testing::Test {
  protected:
    void SetUp() override {
        server_.start("Xvfb", {"-displayfd", "1", "-screen", "0",
                               QString("%1x300x24").arg(kScreenWidth), "-noreset"});
        server_.waitForReadyRead(5000);
        display_ = ":" + QString::fromUtf8(server_.readLine()).trimmed();
    }
    void TearDown() override {
        server_.kill();
        server_.waitForFinished(5000);
    }
    test::Settings settings(const QString& scale = "1") const {
        return {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", display_}, {"QT_SCALE_FACTOR", scale}};
    }
    /// What a shell command prints that has this display.
    std::string run(const QString& command) const {
        QProcess shell;
        shell.start("sh", {"-c", "export DISPLAY=" + display_ + "; " + command});
        EXPECT_TRUE(shell.waitForFinished(5000));
        return shell.readAllStandardOutput().toStdString();
    }

  private:
    QProcess server_;
    QString display_;
};

TEST_F(X11Bar, IsADockThatKeepsTheTopOfTheScreenForItselfAtEveryScale) {
    for (const auto& [scale, height] : {std::pair("1", 22), {"1.5", 33}, {"2", 44}}) {
        BarProcess bar({}, settings(scale));
        const std::string properties =
            run("for window in $(xdotool search --class .); do xprop -id $window; done");
        EXPECT_THAT(properties,
                    HasSubstr("_NET_WM_WINDOW_TYPE(ATOM) = _NET_WM_WINDOW_TYPE_DOCK\n"));
        EXPECT_THAT(properties, HasSubstr("_NET_WM_DESKTOP(CARDINAL) = 4294967295\n"));
        EXPECT_THAT(properties,
                    HasSubstr("_NET_WM_STRUT_PARTIAL(CARDINAL) = 0, 0, " + std::to_string(height) +
                              ", 0, 0, 0, 0, 0, 0, 999, 0, 0\n"));
        EXPECT_EQ(QImage(bar.snapshot()).height(), height);
        EXPECT_NEAR(QImage(bar.snapshot()).width(), kScreenWidth, 1) << "points are whole";
    }
}

TEST_F(X11Bar, SendsTheMouseAndTheKeyboardOn) {
    BarProcess bar({HALVEX_TEST_EXTRA}, settings());
    const int clock = 63 + 12 + 4; // about as wide as the bar's own clock
    const std::pair<QString, const char*> actions[] = {
        {QString("mousemove %1 10").arg(kScreenWidth - clock - 20), ""},
        {"keydown Shift_L click --repeat 2 1 keyup Shift_L", "click shift 2"},
        {"click 8", "click control 1"}, // X numbers the back button 8
        {"sleep 0.1 key Escape sleep 0.1 click 1", "click plain 1"},
        {"sleep 0.1 key Down sleep 0.1 key Return", "chosen"},
        {"sleep 0.1 click 1 sleep 0.1 key Up key Return",
         "test.extra raised an exception: unknown"},
    };
    for (const auto& [action, line] : actions) {
        run("xdotool " + action);
        EXPECT_TRUE(bar.logs(line)) << line << " in " << bar.log();
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
