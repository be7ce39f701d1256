#include "tests/desktop/support/BarProcess.h"
#include "tests/desktop/support/TestBundle.h"
#include "tests/desktop/support/XServer.h"

#include <gmock/gmock.h>

using namespace test;

namespace {

TEST(X11Bar, IsADockThatReservesTheTopOfTheScreenAtEveryScale) {
    const XServer x;
    const std::pair<const char*, std::uint32_t> scales[] = {{"1", 22}, {"1.5", 33}, {"2", 44}};
    for (const auto& [scale, height] : scales) {
        BarProcess bar({}, x.settings(scale));
        EXPECT_THAT(x.property("_NET_WM_WINDOW_TYPE"),
                    testing::ElementsAre(x.atom("_NET_WM_WINDOW_TYPE_DOCK")));
        EXPECT_THAT(x.property("_NET_WM_DESKTOP"), testing::ElementsAre(0xFFFFFFFFU));
        EXPECT_THAT(x.property("_NET_WM_STRUT_PARTIAL"),
                    testing::ElementsAre(0, 0, height, 0, 0, 0, 0, 0, 0, kScreenWidth - 1, 0, 0));
        const QImage picture = bar.picture();
        EXPECT_EQ(picture.height(), static_cast<int>(height));
        EXPECT_NEAR(picture.width(), kScreenWidth, 1) << "a whole number of points";
    }
}

TEST(X11Bar, PassesMouseAndKeyboardInputToItsItems) {
    const XServer x;
    BarProcess bar({HALVEX_TEST_EXTRA}, x.settings());
    x.pointAt(kAtItem);
    x.act({"keydown", "Shift_L", "click", "--repeat", "2", "1", "keyup", "Shift_L"});
    EXPECT_TRUE(bar.logs("click shift 1")) << bar.log();
    EXPECT_TRUE(bar.logs("click shift 2")) << bar.log();
    x.act({"click", "8"}); // X numbers the back button 8
    EXPECT_TRUE(bar.logs("click control 1")) << bar.log();
    // An open menu receives the wheel.
    x.act({"key", "Escape", "keydown", "Alt_L", "click", "4", "keyup", "Alt_L", "click", "5"});
    EXPECT_TRUE(bar.logs("scrolled 1")) << bar.log();
    EXPECT_TRUE(bar.logs("scrolled -1")) << bar.log();
    // Opens the clock's menu, moves the mouse to switch to the item's, and chooses its first entry.
    // The keys reach the clock's menu if they arrive before the switch, so this may take several
    // attempts.
    EXPECT_TRUE(eventually([&] {
        x.act({"key", "Escape"});
        x.clickAt(kAtClock);
        x.pointAt(kAtItem);
        x.act({"key", "Down", "Return"});
        return bar.log().find("chosen") != std::string::npos;
    })) << bar.log();
    EXPECT_EQ(bar.log().find("click plain"), std::string::npos);
    x.act({"key", "Escape"});
    x.act({"click", "1"});
    EXPECT_TRUE(bar.logs("click plain 1")) << bar.log();
    x.act({"key", "Up", "Return"});
    EXPECT_TRUE(bar.logs("test.extra raised an exception: unknown")) << bar.log();
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(X11Bar, SurvivesKeysThatArriveWhileMenusSwitch) {
    const XServer x;
    BarProcess bar({HALVEX_TEST_EXTRA}, x.settings());
    x.pointAt(kAtClock);
    for (int i = 0; i < 10; ++i) {
        x.act({"click", "1"});
        x.act({"key", "--delay", "0", "Right", "Right", "Left", "Right", "Escape"});
    }
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(X11Bar, ReplacesABarWithoutADisplayButNoOtherBar) {
    const auto bus = std::make_shared<PrivateBus>();
    BarProcess offscreen({HALVEX_TEST_EXTRA}, {}, bus);
    EXPECT_EQ(offscreen.run({}, {}, {{"DISPLAY", ""}, {"QT_QPA_PLATFORM", ""}}), 1);
    EXPECT_TRUE(offscreen.logs("halvex-menubar cannot start: there is no display. Set DISPLAY"));
    EXPECT_EQ(offscreen.run(), 1);
    EXPECT_TRUE(offscreen.logs("is running on this session bus, without a display"));

    const XServer x, other;
    BarProcess bar({}, x.settings(), bus);
    EXPECT_EQ(offscreen.waitForExit(), 0) << offscreen.log();
    EXPECT_TRUE(offscreen.logs("unloading"));
    EXPECT_THAT(bar.identifiers(), testing::ElementsAre(kOwnClock));
    EXPECT_EQ(bar.run({}, {}, other.settings()), 1);
    EXPECT_TRUE(bar.logs("another menu bar is running on this session bus, on display " +
                         x.settings()[1].second.toStdString()));
    EXPECT_EQ(bar.run({}, {}, {{"QT_QPA_PLATFORM", "offscreen"}}), 1);
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(X11Bar, QuitsFromTheMenuOfTheEmptyBar) {
    const XServer x;
    BarProcess bar({HALVEX_TEST_EXTRA}, x.settings());
    const int closed = bar.picture().height();
    x.clickAt(200);
    EXPECT_EQ(bar.picture().height(), closed) << "a left click";
    x.pointAt(200);
    x.act({"click", "3"});
    ASSERT_TRUE(eventually([&] { return bar.picture().height() > closed; }));
    x.clickAt(kAtItem);
    EXPECT_TRUE(bar.logs("click plain 1")) << "the item receives the click that closes the menu";
    x.act({"key", "Escape"});
    x.pointAt(200);
    x.act({"click", "3"});
    ASSERT_TRUE(eventually([&] { return bar.picture().height() > closed; }));
    x.act({"key", "Up", "Return"});
    EXPECT_EQ(bar.waitForExit(), 0) << bar.log();
    EXPECT_TRUE(bar.logs("unloading")) << bar.log();
}

TEST(X11Bar, IsMirroredForALanguageWrittenFromRightToLeft) {
    const XServer x;
    Settings settings = x.settings();
    settings.emplace_back("LC_ALL", "he_IL.UTF-8");
    settings.emplace_back("LANG", "he_IL.UTF-8");
    BarProcess bar({}, settings);
    const auto isPainted = [&](int left, int right) {
        const QImage picture = bar.picture();
        for (int column = left; column < right; ++column)
            for (int row = 4; row < 18; ++row)
                if (picture.pixel(column, row) != picture.pixel(kScreenWidth / 2, 2))
                    return true;
        return false;
    };
    EXPECT_TRUE(eventually([&] { return isPainted(5, 60); })) << "the clock is at the left edge";
    EXPECT_FALSE(isPainted(kScreenWidth - 200, kScreenWidth));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(X11Bar, IgnoresRequestsToClose) {
    const XServer x;
    BarProcess bar({}, x.settings());
    x.requestClose();
    x.act({"mousemove", "1", "1"}); // the bar handles this round trip after the request
    EXPECT_FALSE(bar.picture().isNull());
    EXPECT_TRUE(bar.isRunning());
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(X11Bar, DrawsOpenSubmenus) {
    const XServer x;
    BarProcess bar({HALVEX_TEST_EXTRA}, x.settings());
    const auto paintedPixels = [&] {
        const QImage picture = bar.picture();
        int count = 0;
        for (int y = 0; y < picture.height(); ++y)
            for (int column = 0; column < picture.width(); ++column)
                count += qAlpha(picture.pixel(column, y)) > 0 ? 1 : 0;
        return count;
    };
    const int closed = paintedPixels();
    x.clickAt(kAtItem);
    ASSERT_TRUE(eventually([&] { return paintedPixels() > closed; }));
    const int menu = paintedPixels();
    x.act({"key", "Down", "Down", "Right"});
    EXPECT_TRUE(eventually([&] { return paintedPixels() > menu + 1000; }));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

TEST(X11Bar, PassesInputToAViewInAMenu) {
    const XServer x;
    BarProcess bar({}, x.settings());
    const TestBundle bundle(bar, "HasAViewInItsMenu");
    ASSERT_TRUE(bar.loads(bundle.path, kTestExtra));
    // The view is from 31 to 91 points below the top of the screen, below a margin and a frame.
    x.clickAt(kAtItem);
    ASSERT_TRUE(eventually([&] { return bar.picture().height() > 90; }));
    const auto leads = [&](const QStringList& input, const std::string& line) {
        x.act(input);
        EXPECT_TRUE(bar.logs(line)) << bar.log();
    };
    const QString column = QString::number(kAtItem + 10);
    leads({"mousemove", column, "50", "click", "--repeat", "2", "1"}, "of 2");
    leads({"click", "4"}, "view wheel 1");
    leads({"key", "k"}, "view key k");
    leads({"mousedown", "1", "mousemove", column, "200"}, "view drag -");
    EXPECT_EQ(bar.log().find("view exit"), std::string::npos) << bar.log();
    leads({"mouseup", "1"}, "view exit");
    EXPECT_TRUE(bar.logs("view up -")) << bar.log();
    // The keyboard moves on from the view to an entry.
    leads({"mousemove", column, "62", "key", "Down", "Return"}, "chosen");
    // From the bar to the view with the button held.
    leads({"mousemove", QString::number(kAtItem), "10", "mousedown", "1", "mousemove", column, "60",
           "mousemove", column, "61", "mouseup", "1"},
          "view up");
    x.act({"key", "Escape"});
    // The item is unloaded while its view holds the pointer.
    x.clickAt(kAtItem);
    x.act({"mousemove", column, "50", "mousedown", "1"});
    EXPECT_EQ(bar.remove(kTestExtra), 0);
    x.act({"mousemove", column, "70", "mouseup", "1"});
    EXPECT_TRUE(eventually([&] { return bar.reference(kTestExtra) == 0; }));
    EXPECT_EQ(bar.stop(), 0) << bar.log();
}

/// As some window managers do while they start.
TEST(X11Bar, IsShownAgainIfItsFirstRequestIsLost) {
    const XServer x;
    const auto root = xcb_setup_roots_iterator(xcb_get_setup(x.connection())).data->root;
    const std::uint32_t events = XCB_EVENT_MASK_SUBSTRUCTURE_REDIRECT;
    xcb_change_window_attributes(x.connection(), root, XCB_CW_EVENT_MASK, &events);
    xcb_flush(x.connection());
    const BarProcess bar({}, x.settings());
    int requests = 0;
    EXPECT_TRUE(eventually([&] {
        while (const auto event = owned(xcb_poll_for_event(x.connection()))) {
            const auto* request = reinterpret_cast<xcb_map_request_event_t*>(event.get());
            if (event->response_type == XCB_MAP_REQUEST && ++requests == 2)
                xcb_map_window(x.connection(), request->window);
        }
        xcb_flush(x.connection());
        return x.picture().pixel(5, 5) != qRgb(0, 255, 0);
    })) << requests;
}

} // namespace
