#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/XServer.h"

#include <QImage>
#include <QRect>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

using test::BarProcess;
using test::owned;
using test::XServer;

namespace {

/// A second connection to an X server, for pictures of its screen.
class Screen {
  public:
    explicit Screen(const XServer& x)
        : connection_(xcb_connect(x.display.toUtf8().constData(), nullptr)),
          root_(xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root) {
        xcb_change_window_attributes(connection_, root_, XCB_CW_BACK_PIXEL, &kBackground);
        xcb_clear_area(connection_, 0, root_, 0, 0, 0, 0);
    }
    ~Screen() { xcb_disconnect(connection_); }

    QImage picture() const {
        const auto reply = owned(
            xcb_get_image_reply(connection_,
                                xcb_get_image(connection_, XCB_IMAGE_FORMAT_Z_PIXMAP, root_, 0, 0,
                                              test::kScreenWidth, test::kScreenHeight, ~0U),
                                nullptr));
        return QImage(xcb_get_image_data(reply.get()), test::kScreenWidth, test::kScreenHeight,
                      QImage::Format_RGB32)
            .copy();
    }
    static bool isBackground(const QImage& picture, QPoint point) {
        return (picture.pixel(point) & 0xFFFFFF) == kBackground;
    }
    /// Returns the bounds of everything but the background.
    QRect occupied() const {
        const QImage shown = picture();
        QRect area;
        for (int y = 0; y < shown.height(); ++y)
            for (int x = 0; x < shown.width(); ++x)
                if (!isBackground(shown, {x, y}))
                    area |= QRect(x, y, 1, 1);
        return area;
    }

  private:
    static constexpr std::uint32_t kBackground = 0x00FF00;
    xcb_connection_t* connection_;
    xcb_window_t root_;
};

/// The panel of the command line on a screen without a window manager or compositing manager.
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

TEST_F(X11Panel, IsCutToItsRoundedOutlineAndShowsTheResizeIndicator) {
    const Screen screen(x);
    const auto expectPanel = [&](const QRect& frame) {
        EXPECT_TRUE(BarProcess::eventually([&] { return screen.occupied() == frame; }));
        const QImage picture = screen.picture();
        for (const int column : {frame.left(), frame.right()})
            for (const int row : {frame.top(), frame.bottom()}) {
                const QPoint corner(column, row);
                const QPoint inwards(column == frame.left() ? 1 : -1, row == frame.top() ? 1 : -1);
                EXPECT_TRUE(Screen::isBackground(picture, corner + inwards))
                    << column << ' ' << row;
                EXPECT_FALSE(Screen::isBackground(picture, corner + inwards * 2))
                    << column << ' ' << row;
            }
        // The diagonal into the panel crosses three bright lines.
        for (const auto& [distance, isBright] :
             {std::pair{4, true}, {5, false}, {6, true}, {7, false}, {8, true}, {9, false}}) {
            const QPoint point = frame.bottomRight() - QPoint(distance, distance);
            EXPECT_EQ(qRed(picture.pixel(point)) > 50, isBright) << distance;
        }
    };
    expectPanel({340, 31, 320, 219});
    x.act({"mousemove", "655", "245", "mousedown", "1", "mousemove", "675", "255", "mouseup", "1"});
    expectPanel({340, 31, 340, 229});
}

TEST_F(X11Panel, ReportsClicksAndClosesOnEscape) {
    ASSERT_FALSE(window.isEmpty()) << panel.readAllStandardError().toStdString();
    clickAt(500, 150); // without a window manager, the panel is in the middle of the screen
    EXPECT_TRUE(prints("click\n"));
    clickAt(340 + 320 - 10, 31 + 19 + 9);
    EXPECT_TRUE(prints("information\n"));
    x.act({"key", "space"}); // the click has focused the button
    EXPECT_TRUE(prints("information\ninformation\n")) << printed.toStdString();
    x.act({"key", "Escape"});
    EXPECT_TRUE(panel.waitForFinished(5000));
    EXPECT_EQ(panel.exitStatus(), QProcess::NormalExit);
    EXPECT_EQ(panel.exitCode(), 0);
}

} // namespace
