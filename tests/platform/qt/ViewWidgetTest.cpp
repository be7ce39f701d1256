#include "platform/qt/ViewWidget.h"

#include "platform/qt/HandledEvent.h"
#include "platform/qt/QtGraphics.h"
#include "tests/support/Fakes.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingView.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QMimeData>
#include <QTest>
#include <QUrl>

#include <gtest/gtest.h>

#include <limits>

using namespace platform;
using platform::qt::ViewWidget;

namespace {

class ViewWidgetTest : public testing::Test {
  protected:
    bool send(QEvent&& event) {
        event.setAccepted(false);
        QApplication::sendEvent(&widget, &event);
        return event.isAccepted();
    }
    bool drop(int x) {
        QMimeData data;
        data.setUrls({QUrl("file:///a%20b"), QUrl("https://example.org/")});
        send(QDragEnterEvent({x, 2}, Qt::CopyAction, &data, Qt::LeftButton, {}));
        return send(QDropEvent(QPointF(x, 2), Qt::CopyAction, &data, Qt::LeftButton, {}));
    }
    static int redPixels(const QImage& image) {
        int count = 0;
        for (int i = 0; i < image.width() * image.height(); ++i)
            count += image.pixelColor(i % image.width(), i / image.width()) == Qt::red ? 1 : 0;
        return count;
    }

    test::RecordingLog log;
    qt::QtGraphics graphics;
    ScopedService<Graphics> asGraphics{graphics};
    std::shared_ptr<test::RecordingView> view = std::make_shared<test::RecordingView>(40, 20);
    ViewWidget widget{view, "test.item"};
};

TEST_F(ViewWidgetTest, PassesMouseEventsWithLocationsFromTheBottomLeft) {
    widget.resize(60, 30);
    Event current;
    view->onMouseDown = [&] { current = qt::HandledEvent::current(); };
    const auto mouse = [&](QEvent::Type type, QPoint at, Qt::MouseButton button,
                           Qt::MouseButtons pressed, Qt::KeyboardModifiers modifiers = {}) {
        send(QMouseEvent(type, at, at, button, pressed, modifiers));
    };
    mouse(QEvent::MouseMove, {5, 6}, Qt::NoButton, {});
    mouse(QEvent::MouseButtonPress, {3, 4}, Qt::LeftButton, Qt::LeftButton, Qt::ShiftModifier);
    EXPECT_EQ(current.modifierFlags, kShiftKeyMask);
    mouse(QEvent::MouseMove, {7, 35}, Qt::NoButton, Qt::LeftButton);
    send(QEvent(QEvent::Leave));
    mouse(QEvent::MouseButtonRelease, {3, 34}, Qt::LeftButton, {});
    mouse(QEvent::MouseButtonDblClick, {3, 4}, Qt::LeftButton, Qt::LeftButton);
    mouse(QEvent::MouseButtonRelease, {3, 4}, Qt::LeftButton, {});
    mouse(QEvent::MouseButtonPress, {3, 4}, Qt::RightButton, Qt::RightButton);
    mouse(QEvent::MouseButtonRelease, {3, 4}, Qt::RightButton, {});
    send(QEvent(QEvent::Leave));
    send(QEvent(QEvent::Leave));
    EXPECT_EQ(view->calls,
              "move 5,14;down1 3,16 shift;drag1 7,-15;up0 3,-14;exit;down2 3,16;up0 3,16;"
              "down1 3,16;up1 3,16;exit;");
    EXPECT_EQ(qt::HandledEvent::current().clickCount, 0);
}

TEST_F(ViewWidgetTest, PassesKeysAndTheWheelOnUnlessTheViewHandlesThem) {
    for (const bool handles : {false, true}) {
        view->handles = handles;
        EXPECT_EQ(send(QWheelEvent({3, 4}, {3, 4}, {}, {-240, 120}, {}, Qt::ShiftModifier,
                                   Qt::NoScrollPhase, false)),
                  handles);
        EXPECT_EQ(send(QKeyEvent(QEvent::KeyPress, Qt::Key_Left, {})), handles);
    }
    view->takeCalls();
    for (const auto& [key, modifiers, text, call] :
         {std::tuple(Qt::Key_Enter, Qt::KeyboardModifiers(Qt::KeypadModifier), "\r", "key1;"),
          {Qt::Key_A, Qt::ShiftModifier, "A", "key0A;"},
          {Qt::Key_A, Qt::ControlModifier, "\x01", "key0a;"},
          {Qt::Key_Shift, Qt::ShiftModifier, "", "key0;"},
          {Qt::Key_unknown, {}, "é", "key0é;"}}) {
        send(QKeyEvent(QEvent::KeyPress, key, modifiers, text));
        EXPECT_EQ(view->takeCalls(), call);
    }
    send(QWheelEvent({3, 4}, {3, 4}, {}, {-240, 120}, {}, Qt::ShiftModifier, Qt::NoScrollPhase,
                     false));
    EXPECT_EQ(view->takeCalls(), "wheel 2,1 shift;");
}

TEST_F(ViewWidgetTest, DropsOnlyWhatTheViewAcceptsAtThatPlace) {
    view->handles = true;
    EXPECT_TRUE(drop(5));
    EXPECT_FALSE(drop(15));
    EXPECT_EQ(view->calls, "/a b;drop 5,18;");
}

TEST_F(ViewWidgetTest, DrawsTheViewInItsSizeAndFollowsChanges) {
    widget.resize(60, 30);
    EXPECT_EQ(redPixels(widget.grab().toImage()), 40 * 20);
    int resized = 0;
    QObject::connect(&widget, &ViewWidget::viewResized, [&] { ++resized; });
    view->setFrameSize({10.5, 8});
    EXPECT_EQ(widget.sizeHint(), QSize(11, 8));
    widget.setFollowsWidget(Qt::Horizontal);
    EXPECT_EQ(view->frame().size, (Size{60, 8}));
    widget.resize(50, 30);
    EXPECT_EQ(redPixels(widget.grab().toImage()), 50 * 8);
    EXPECT_EQ(widget.sizeHint(), QSize(11, 8)) << "what the view asked for";
    EXPECT_EQ(resized, 1);
    widget.setFollowsWidget({});
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    view->setFrameSize({kInfinity, std::numeric_limits<double>::quiet_NaN()});
    EXPECT_EQ(widget.sizeHint(), QSize(4096, 0));
    view->setFrameSize({-1, 1e300});
    EXPECT_EQ(redPixels(widget.grab().toImage()), 0);
}

TEST_F(ViewWidgetTest, PresentsTheViewToScreenReaders) {
    widget.setAccessibleName("June");
    auto* accessible = QAccessible::queryAccessibleInterface(&widget);
    EXPECT_EQ(accessible->role(), QAccessible::Canvas);
    EXPECT_EQ(accessible->text(QAccessible::Name), "June") << "the container's own text";
    view->texts = {"Calendar", "Monday", "Arrow keys move"};
    EXPECT_EQ(accessible->text(QAccessible::Name), "Calendar");
    EXPECT_EQ(accessible->text(QAccessible::Value), "Monday");
    EXPECT_EQ(accessible->text(QAccessible::Description), "Arrow keys move");
}

TEST_F(ViewWidgetTest, SurvivesAViewThatThrowsOrMovesToAnotherContainer) {
    view->onMouseDown = [] { throw 42; };
    QTest::mousePress(&widget, Qt::LeftButton, {}, QPoint(3, 4));
    EXPECT_TRUE(log.contains("test.item"));
    const auto other = std::make_unique<ViewWidget>(view, "test.item");
    EXPECT_EQ(view->container(), other.get());
    {
        ViewWidget last(view, "test.item");
        EXPECT_EQ(view->container(), &last);
    }
    EXPECT_EQ(view->container(), nullptr);
    view->setFrameSize({1, 1});
}

} // namespace
