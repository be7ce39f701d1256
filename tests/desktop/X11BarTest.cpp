#include "tests/desktop/support/BarProcess.h"

#include <QImage>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <memory>
#include <xcb/xcb.h>

using test::BarProcess;

namespace {

constexpr int kScreenWidth = 1000;

template <class T>
std::unique_ptr<T, decltype(&std::free)> owned(T* reply) {
    return {reply, &std::free};
}

/// An X server of the test's own, and what can be seen and done there.
class XServer {
  public:
    XServer() {
        server_.start("Xvfb", {"-displayfd", "1", "-screen", "0",
                               QString("%1x300x24").arg(kScreenWidth), "-noreset"});
        server_.waitForReadyRead(5000);
        display = ":" + QString::fromUtf8(server_.readLine()).trimmed();
        connection_ = xcb_connect(display.toUtf8().constData(), nullptr);
        root_ = xcb_setup_roots_iterator(xcb_get_setup(connection_)).data->root;
    }
    ~XServer() {
        xcb_disconnect(connection_);
        server_.kill();
        server_.waitForFinished(5000);
    }

    std::uint32_t atom(const std::string& name) const {
        const auto size = static_cast<std::uint16_t>(name.size());
        return owned(xcb_intern_atom_reply(
                         connection_, xcb_intern_atom(connection_, 0, size, name.c_str()), nullptr))
            ->atom;
    }
    /// The numbers in a property of the first window that has it.
    std::vector<std::uint32_t> property(const std::string& name) const {
        const auto tree =
            owned(xcb_query_tree_reply(connection_, xcb_query_tree(connection_, root_), nullptr));
        const auto* windows = xcb_query_tree_children(tree.get());
        for (int i = 0; i < xcb_query_tree_children_length(tree.get()); ++i) {
            const auto reply = owned(xcb_get_property_reply(
                connection_,
                xcb_get_property(connection_, 0, windows[i], atom(name), XCB_ATOM_ANY, 0, 64),
                nullptr));
            const auto* values =
                static_cast<const std::uint32_t*>(xcb_get_property_value(reply.get()));
            if (reply->value_len > 0)
                return {values, values + reply->value_len};
        }
        return {};
    }
    /// Does what xdotool is told.
    void act(const QStringList& arguments) const {
        QProcess xdotool;
        auto environment = QProcessEnvironment::systemEnvironment();
        environment.insert("DISPLAY", display);
        xdotool.setProcessEnvironment(environment);
        xdotool.start("xdotool", arguments);
        EXPECT_TRUE(xdotool.waitForFinished(5000));
    }

    QString display;

  private:
    QProcess server_;
    xcb_connection_t* connection_ = nullptr;
    xcb_window_t root_ = 0;
};

class X11Bar : public testing::Test {
  protected:
    test::Settings settings(const QString& scale = "1") const {
        return {{"QT_QPA_PLATFORM", "xcb"}, {"DISPLAY", x.display}, {"QT_SCALE_FACTOR", scale}};
    }
    XServer x;
};

TEST_F(X11Bar, IsADockThatKeepsTheTopOfTheScreenForItselfAtEveryScale) {
    const std::pair<const char*, std::uint32_t> scales[] = {{"1", 22}, {"1.5", 33}, {"2", 44}};
    for (const auto& [scale, height] : scales) {
        BarProcess bar({}, settings(scale));
        EXPECT_THAT(x.property("_NET_WM_WINDOW_TYPE"),
                    testing::ElementsAre(x.atom("_NET_WM_WINDOW_TYPE_DOCK")));
        EXPECT_THAT(x.property("_NET_WM_DESKTOP"), testing::ElementsAre(0xFFFFFFFFU));
        EXPECT_THAT(x.property("_NET_WM_STRUT_PARTIAL"),
                    testing::ElementsAre(0, 0, height, 0, 0, 0, 0, 0, 0, kScreenWidth - 1, 0, 0));
        const auto file = QString::fromStdString(bar.folder().file("bar.png"));
        bar.call("Snapshot", {file});
        const QImage picture(file);
        EXPECT_EQ(picture.height(), static_cast<int>(height));
        EXPECT_NEAR(picture.width(), kScreenWidth, 1) << "points are whole";
    }
}

TEST_F(X11Bar, SendsTheMouseAndTheKeyboardOn) {
    BarProcess bar({HALVEX_TEST_EXTRA}, settings());
    const int clock = 63 + 12 + 4; // about as wide as the bar's own clock
    const QStringList pointAtItem{"mousemove", QString::number(kScreenWidth - clock - 20), "10"};
    x.act(pointAtItem);
    x.act({"keydown", "Shift_L", "click", "--repeat", "2", "1", "keyup", "Shift_L"});
    EXPECT_TRUE(bar.logs("click shift 1")) << bar.log();
    EXPECT_TRUE(bar.logs("click shift 2")) << bar.log();
    x.act({"click", "8"}); // X numbers the back button 8
    EXPECT_TRUE(bar.logs("click control 1")) << bar.log();
    x.act({"key", "Escape"});
    x.act({"click", "1"});
    EXPECT_TRUE(bar.logs("click plain 1")) << bar.log();
    x.act({"key", "Down"});
    x.act({"key", "Return"});
    EXPECT_TRUE(bar.logs("chosen")) << bar.log();
    x.act({"click", "1"});
    x.act({"key", "Up"});
    x.act({"key", "Return"});
    EXPECT_TRUE(bar.logs("test.extra raised an exception: unknown")) << bar.log();
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

} // namespace
