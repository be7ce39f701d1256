#include "platform/expat/ExpatPropertyLists.h"
#include "platform/qt/PanelButton.h"
#include "platform/qt/PanelGeometry.h"
#include "platform/qt/PanelWidget.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/QtPanelService.h"
#include "ui/HUDWindow.h"

#include <gmock/gmock.h>

#include <QAccessible>
#include <QApplication>
#include <QScreen>
#include <QTest>
#include <QTimer>

using namespace platform;
using platform::qt::PanelButton;
using platform::qt::PanelWidget;
using testing::ElementsAre;

namespace {

class Target final : public ActionTarget {
  public:
    std::vector<std::string> actions;
    std::function<void()> onAction = [] {};

    bool respondsToSelector(const Selector&) const override { return true; }
    void performSelector(const Selector& selector, ActionSender&) override {
        actions.push_back(selector);
        onAction();
    }
};

constexpr int kMargin = 14; // of the shadow around the frame

/// A visible panel of 200 x 119 points with an "i" button.
class ShownPanel : public testing::Test {
  protected:
    ShownPanel() {
        platform::expat::install();
        panel->initWithContentRect({{100, 200}, {200, 100}}, 0, BackingStore::Buffered, false);
        panel->setTitle("Clock");
        panel->setTarget(target);
        panel->setAction("panel");
        panel->addiButton({{}, {200, 100}}, target, "button");
        panel->makeKeyAndOrderFront();
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<PanelWidget*>(window); found && found->isVisible())
                widget = found;
        EXPECT_TRUE(QTest::qWaitForWindowExposed(widget));
    }

    /// Returns a point of the widget, given from the top left corner of the frame.
    static QPoint at(int x, int y) { return {kMargin + x, kMargin + y}; }
    void drag(QPoint from, QPoint by) {
        QTest::mousePress(widget, Qt::LeftButton, {}, from);
        // On the screen, since the widget moves with the mouse.
        const QPoint start = widget->mapToGlobal(from);
        for (const int part : {1, 2}) {
            const QPoint now = start + by * part / 2;
            QMouseEvent move(QEvent::MouseMove, widget->mapFromGlobal(now), now, Qt::NoButton,
                             Qt::LeftButton, {});
            QApplication::sendEvent(widget, &move);
        }
        QTest::mouseRelease(widget, Qt::LeftButton, {}, widget->mapFromGlobal(start + by));
    }

    qt::QtGraphics graphics;
    ScopedService<Graphics> graphicsService{graphics};
    qt::QtPanelService panels;
    ScopedService<PanelService> panelService{panels};
    std::shared_ptr<Target> target = std::make_shared<Target>();
    std::shared_ptr<HUDWindow> panel = std::make_shared<HUDWindow>();
    QPointer<PanelWidget> widget;
};

TEST_F(ShownPanel, IsResizedByItsEdgesAndIndicatorAndMovedByItsTitle) {
    const std::tuple<const char*, QPoint, QPoint, Rect> cases[] = {
        {"indicator", at(190, 110), {50, 20}, {{100, 180}, {250, 139}}},
        {"right edge", at(248, 60), {-50, 7}, {{100, 180}, {200, 139}}},
        {"lower edge", at(90, 137), {9, -20}, {{100, 200}, {200, 119}}},
        {"upper left corner", at(1, 1), {-10, -20}, {{90, 200}, {210, 139}}},
        {"title", at(20, 10), {-40, -30}, {{50, 230}, {210, 139}}},
        {"upper left corner inwards", at(1, 1), {10, 20}, {{60, 230}, {200, 119}}},
        {"right edge to the minimum", at(198, 60), {-400, 0}, {{60, 230}, {76, 119}}},
    };
    for (const auto& [edge, from, by, frame] : cases) {
        SCOPED_TRACE(edge);
        drag(from, by);
        EXPECT_EQ(panel->frame(), frame);
        EXPECT_EQ(panel->look().backgroundColor.pattern->size(), frame.size);
        const int screen = QGuiApplication::primaryScreen()->geometry().height();
        EXPECT_EQ(widget->geometry().top() + kMargin, screen - frame.origin.y - frame.size.height);
    }
    EXPECT_TRUE(target->actions.empty()) << "a drag is not a click";
    const Rect button = panel->contentView().buttons().front()->frame();
    EXPECT_EQ(button.origin, (Point{76 - 16, 84}));
    const auto* shown = widget->findChild<PanelButton*>();
    EXPECT_EQ(shown->mapTo(widget, QPoint()), at(60, 19 + 3));
}

TEST_F(ShownPanel, CanBeUsedByKeyboardAndScreenReader) {
    auto* button = widget->findChild<PanelButton*>();
    QTest::mouseClick(widget, Qt::RightButton, {}, at(80, 60));
    EXPECT_THAT(target->actions, ElementsAre());
    QTest::keyClick(widget, Qt::Key_Return);
    widget->setFocus();
    QTest::keyClick(widget, Qt::Key_Tab);
    EXPECT_TRUE(button->hasFocus());
    QTest::keyClick(button, Qt::Key_Space);
    QTest::keyClick(button, Qt::Key_Return);
    EXPECT_THAT(target->actions, ElementsAre("panel", "button", "button"));
    QTest::keyClick(widget, Qt::Key_Right, Qt::ControlModifier);
    QTest::keyClick(widget, Qt::Key_Down, Qt::ControlModifier | Qt::ShiftModifier);
    EXPECT_EQ(panel->frame(), (Rect{{116, 184}, {200, 135}}));

    const auto name = [](QObject* object) {
        return QAccessible::queryAccessibleInterface(object)->text(QAccessible::Name);
    };
    EXPECT_EQ(name(widget), "Clock");
    EXPECT_EQ(name(button), "Information");
    int closed = 0;
    panel->setCloseObserver([&] { ++closed; });
    QTest::keyClick(widget, Qt::Key_Escape);
    EXPECT_FALSE(widget->isVisible());
    EXPECT_EQ(closed, 1);
}

TEST_F(ShownPanel, SurvivesActionsThatThrowOrReleaseIt) {
    target->onAction = [] { throw 1; };
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80, 60));
    target->onAction = [this] { panel.reset(); };
    QTest::mouseClick(widget, Qt::LeftButton, {}, at(80, 60));
    EXPECT_EQ(target->actions.size(), 2U);
    EXPECT_FALSE(panel);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(widget);
}

TEST_F(ShownPanel, IsClosedByTheControlAndMinimizedByADoubleClickOnItsTitleBar) {
    int closed = 0;
    panel->setCloseObserver([&] { ++closed; });
    QTest::mouseDClick(widget, Qt::LeftButton, {}, at(100, 30));
    QTest::mouseDClick(widget, Qt::RightButton, {}, at(100, 10));
    EXPECT_FALSE(widget->isMinimized());
    QTest::mouseDClick(widget, Qt::LeftButton, {}, at(100, 18));
    EXPECT_TRUE(widget->isMinimized());
    panel->makeKeyAndOrderFront();
    EXPECT_FALSE(widget->isMinimized());

    QWidget* const control = widget->childAt(at(9, 9));
    ASSERT_TRUE(control);
    EXPECT_NE(widget->childAt(at(20, 9)), control) << "the title begins after 19 points";
    EXPECT_EQ(QAccessible::queryAccessibleInterface(control)->text(QAccessible::Name), "Close");
    QTest::mousePress(control, Qt::LeftButton);
    QTest::mouseRelease(control, Qt::LeftButton, {}, {60, 60}); // beside it
    EXPECT_EQ(closed, 0);
    QTest::mouseClick(control, Qt::LeftButton);
    EXPECT_EQ(closed, 1);
    EXPECT_FALSE(widget->isVisible());
}

TEST(PanelGeometry, IsRelativeToThePrimaryScreenWhereverThatIs) {
    const Rect frame{{100, 50}, {200, 119}};
    const std::pair<QRect, QRect> cases[] = {{{0, 0, 800, 600}, {86, 417, 228, 147}},
                                             {{1920, 200, 800, 600}, {2006, 617, 228, 147}},
                                             {{-800, -600, 800, 600}, {-714, -183, 228, 147}}};
    for (const auto& [screen, window] : cases) {
        EXPECT_EQ(qt::windowGeometry(frame, kMargin, screen), window);
        EXPECT_EQ(qt::panelFrame(window, kMargin, screen), frame);
    }
}

TEST(PanelGeometry, KeepsTheTitleBarWithinReach) {
    const QList<QRect> screens{{0, 0, 800, 600}, {800, 0, 400, 300}};
    const Size size{200, 119};
    const std::pair<Point, Point> cases[] = {
        {{100, 50}, {100, 50}},     {{-140, 50}, {-140, 50}},  {{-141, 50}, {0, 50}},
        {{740, 50}, {740, 50}},     {{741, 50}, {600, 50}},    {{741, 400}, {741, 400}},
        {{1140, 400}, {1140, 400}}, {{1141, 400}, {600, 400}}, {{100, -109}, {100, -109}},
        {{100, -110}, {100, 0}},    {{100, 490}, {100, 490}},  {{100, 491}, {100, 481}},
        {{5000, -3000}, {600, 0}}};
    for (const auto& [origin, expected] : cases)
        EXPECT_EQ(qt::reachableFrame({origin, size}, screens), (Rect{expected, size})) << origin.x;
    EXPECT_EQ(qt::reachableFrame({{-900, 700}, {900, 700}}, screens), (Rect{{0, -100}, {900, 700}}))
        << "too large: the title bar is visible";
}

TEST_F(ShownPanel, FinishesItsAnimationIfItIsReleasedMeanwhile) {
    Size last;
    panel->setResizeObserver([&, shown = panel.get()] { last = shown->frame().size; });
    const std::weak_ptr<HUDWindow> watched = panel;
    QTimer::singleShot(30, [this] { panel.reset(); });
    panel->setFrame({{100, 100}, {300, 219}}, true, true);
    EXPECT_EQ(last, (Size{300, 219}));
    EXPECT_TRUE(watched.expired());
}

TEST_F(ShownPanel, IsResizedInStepsEachWithANewBackground) {
    std::vector<Size> sizes;
    panel->setResizeObserver([&] {
        sizes.push_back(panel->frame().size);
        EXPECT_EQ(panel->look().backgroundColor.pattern->size(), sizes.back());
    });
    panel->setFrame({{100, 100}, {300, 219.5}}, true, true);
    EXPECT_EQ(panel->frame(), (Rect{{100, 100}, {300, 219.5}}));
    EXPECT_GT(sizes.size(), 5U);
    EXPECT_TRUE(std::ranges::is_sorted(sizes, {}, &Size::width));
    const QImage picture = widget->grab().toImage();
    EXPECT_EQ(picture.size(), QSize(300 + 2 * kMargin, 220 + 2 * kMargin));
    const auto alphaAt = [&](QPoint point) { return picture.pixelColor(point).alpha(); };
    EXPECT_EQ(alphaAt(at(150, 100)), 191);
    EXPECT_EQ(alphaAt(at(150, 0)), 0) << "the fractional point at the top";
    EXPECT_GT(alphaAt(at(150, -2)), 20) << "the shadow";
    EXPECT_EQ(alphaAt({0, 0}), 0);
}

} // namespace
