#include "apps/menubar/ItemWidget.h"

#include "menubar/HalvexMenuExtraBase.h"
#include "platform/qt/Desktop.h"
#include "tests/support/Fakes.h"

#include <QAccessible>
#include <QApplication>
#include <QDropEvent>
#include <QHelpEvent>
#include <QMimeData>
#include <QTest>
#include <QToolTip>
#include <QWheelEvent>

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

using namespace apps;

namespace {

/// Records wheel turns and drops, and accepts drops on its left half.
class RecordingItem final : public HalvexMenuExtraBase {
  public:
    std::string calls;

    bool scrolled(const platform::WheelEvent& event) override {
        calls += std::to_string(static_cast<int>(event.deltaX)) + ',' +
                 std::to_string(static_cast<int>(event.deltaY)) + ' ';
        return true;
    }
    bool acceptsDrop(const platform::DroppedData& data) const override {
        return data.location.x < 20;
    }
    bool performDrop(const platform::DroppedData& data) override {
        calls += data.text;
        for (const std::string& file : data.files)
            calls += file + ' ';
        return data.text != "useless";
    }
};

/// Shows an item with the title "12:34".
class ItemWidgetTest : public testing::Test {
  protected:
    ItemWidgetTest() {
        using platform::PropertyList;
        extra->initWithBundle(std::make_shared<platform::Bundle>(
            "/Test.menu", PropertyList::Dictionary{{"CFBundleName", "Test"}}));
        extra->setTitle("12:34");
        widget.resize(widget.preferredWidth(), 22);
        QObject::connect(&widget, &ItemWidget::pressed,
                         [this](const platform::Event& event) { events.push_back(event); });
    }

    platform::qt::QtGraphics& graphics = platform::qt::install();
    test::RecordingHost host;
    std::shared_ptr<RecordingItem> extra = std::make_shared<RecordingItem>();
    ItemWidget widget{"test.item", extra, graphics, nullptr};
    std::vector<platform::Event> events;
};

TEST_F(ItemWidgetTest, IsAButtonWithAMenuForScreenReaders) {
    auto* accessible = QAccessible::queryAccessibleInterface(&widget);
    ASSERT_NE(accessible, nullptr);
    EXPECT_EQ(accessible->role(), QAccessible::ButtonMenu);
    EXPECT_EQ(accessible->text(QAccessible::Name), "Test, 12:34");
    extra->setTitle("12:35");
    EXPECT_EQ(accessible->text(QAccessible::Name), "Test, 12:35");
    extra->setToolTip("the time");
    EXPECT_EQ(accessible->text(QAccessible::Value), "12:35");
    EXPECT_EQ(accessible->text(QAccessible::Description), "the time");
    extra->setAccessibleTexts({.name = "Clock", .value = "noon", .description = "local"});
    EXPECT_EQ(accessible->text(QAccessible::Name), "Clock, noon");
    EXPECT_EQ(accessible->text(QAccessible::Description), "local");
    EXPECT_FALSE(accessible->state().focused);
    widget.setSelected(true);
    EXPECT_TRUE(accessible->state().focused);
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].modifierFlags, 0U);
    EXPECT_EQ(events[0].buttonNumber, 0);
}

TEST_F(ItemWidgetTest, IsAsWideAsAnItemOfAnyLength) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const auto& [length, width] : {std::pair(20.5F, 37),
                                        {0.0F, 0},
                                        {-5.0F, 0},
                                        {-kInfinity, 0},
                                        {std::numeric_limits<float>::quiet_NaN(), 0},
                                        {3e9F, 100'016},
                                        {kInfinity, 100'016}}) {
        extra->setLength(length);
        EXPECT_EQ(widget.preferredWidth(), width) << length;
    }
}

TEST_F(ItemWidgetTest, CountsClicksAndTranslatesButtonsAndModifiers) {
    using Row = std::tuple<Qt::MouseButton, Qt::KeyboardModifiers, int, int, std::uint32_t, int>;
    for (const auto& [button, modifiers, x, buttonNumber, flags, clickCount] :
         {Row{Qt::LeftButton, {}, 5, 0, 0, 1},
          Row{Qt::LeftButton, Qt::ShiftModifier, 6, 0, 0x20000, 2},
          Row{Qt::LeftButton, {}, 35, 0, 0, 1}, // too far for a double click
          Row{Qt::RightButton, Qt::ControlModifier, 35, 1, 0x40000, 1},
          Row{Qt::MiddleButton, Qt::AltModifier, 35, 2, 0x80000, 1},
          Row{Qt::BackButton, Qt::AltModifier | Qt::ControlModifier, 35, 3, 0xC0000, 1}}) {
        QMouseEvent press(QEvent::MouseButtonPress, QPoint(x, 10),
                          widget.mapToGlobal(QPoint(x, 10)), button, button, modifiers);
        press.setTimestamp(1000);
        QApplication::sendEvent(&widget, &press);
        EXPECT_EQ(events.back().buttonNumber, buttonNumber);
        EXPECT_EQ(events.back().modifierFlags, flags);
        EXPECT_EQ(events.back().location, (platform::Point{x - double(ItemWidget::kPadding), 12}))
            << "from the bottom left";
        EXPECT_EQ(events.back().clickCount, clickCount) << "button " << buttonNumber;
    }
}

TEST_F(ItemWidgetTest, AnnouncesChangesAtMostOncePerInterval) {
    std::vector<std::string> announcements;
    QObject::connect(&widget, &ItemWidget::announced,
                     [&](const std::string& name) { announcements.push_back(name); });
    const auto draw = [this](const char* title) {
        extra->setTitle(title);
        widget.grab();
    };
    widget.setAnnouncementInterval(std::chrono::milliseconds(200));
    draw("0"); // the widget follows the state of the screen reader from here on
    QAccessible::setActive(true);
    draw("1");
    draw("2");
    draw("3");
    ASSERT_EQ(announcements, std::vector<std::string>{"Test, 1"});
    ASSERT_TRUE(QTest::qWaitFor([&] { return announcements.size() > 1; }, 2000));
    EXPECT_EQ(announcements.back(), "Test, 3") << "the last change is not lost";
    QTest::qWait(220);
    draw("3");
    EXPECT_EQ(announcements.size(), 2U) << "the same title";
    QAccessible::setActive(false);
    draw("4");
    EXPECT_EQ(announcements.size(), 2U) << "no screen reader";
}

TEST_F(ItemWidgetTest, SendsCompleteNotchesOfTheWheel) {
    using Row = std::tuple<QPoint, Qt::KeyboardModifiers, const char*>;
    for (const auto& [angle, modifiers, calls] :
         {Row{{0, 120}, {}, "0,1 "}, Row{{0, -240}, {}, "0,-2 "}, Row{{120, 0}, {}, "-1,0 "},
          Row{{120, 0}, Qt::AltModifier, "0,1 "}, // Qt has exchanged the axes
          Row{{0, 50}, {}, ""}, Row{{0, 50}, {}, ""}, Row{{0, 50}, {}, "0,1 "},
          Row{{0, -110}, {}, ""}, Row{{0, -10}, {}, "0,-1 "}}) {
        QWheelEvent event({10, 10}, widget.mapToGlobal(QPointF(10, 10)), {}, angle, Qt::NoButton,
                          modifiers, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&widget, &event);
        EXPECT_EQ(std::exchange(extra->calls, {}), calls) << angle.x() << ' ' << angle.y();
    }
}

TEST_F(ItemWidgetTest, PassesDropsThatTheItemAccepts) {
    struct Row {
        const char* text;
        QList<QUrl> urls;
        int x;
        Qt::DropActions possible;
        bool isAccepted;
        const char* calls;
    };
    for (const auto& [text, urls, x, possible, isAccepted, calls] :
         {Row{"text", {}, 10, Qt::MoveAction | Qt::CopyAction, true, "text"},
          Row{"text", {}, 30, Qt::CopyAction, false, ""},
          Row{"text", {}, 10, Qt::MoveAction, false, ""}, // the source would delete it
          Row{"", {}, 10, Qt::CopyAction, false, ""},
          Row{"useless", {}, 10, Qt::CopyAction, true, "useless"},
          Row{"/a", {QUrl("file:///a%20b"), QUrl("http://c/d")}, 10, Qt::LinkAction, true, "/a b "},
          Row{"http://c/d", {QUrl("http://c/d")}, 10, Qt::CopyAction, true, "http://c/d"}}) {
        QMimeData data;
        data.setText(text);
        if (!urls.empty())
            data.setUrls(urls);
        QDragEnterEvent enter({x, 10}, possible, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&widget, &enter);
        QDragMoveEvent move({x, 10}, possible, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&widget, &move);
        EXPECT_EQ(move.isAccepted(), isAccepted) << text;
        QDropEvent drop(QPointF(x, 10), possible, &data, Qt::LeftButton, {});
        QApplication::sendEvent(&widget, &drop);
        EXPECT_EQ(drop.isAccepted(), isAccepted && text != std::string("useless")) << text;
        EXPECT_NE(drop.dropAction(), Qt::MoveAction) << text;
        EXPECT_EQ(std::exchange(extra->calls, {}), calls);
    }
}

TEST_F(ItemWidgetTest, ShowsTheToolTipAsPlainText) {
    for (const auto& [text, shown] : {std::pair("two &\nlines", "two &\nlines"),
                                      {"a <b>bold</b> tip", "&lt;b&gt;bold&lt;/b&gt;"},
                                      {"", ""}}) {
        extra->setToolTip(text);
        QHelpEvent event(QEvent::ToolTip, {5, 5}, widget.mapToGlobal(QPoint(5, 5)));
        QApplication::sendEvent(&widget, &event);
        if (*text != '\0')
            EXPECT_TRUE(QToolTip::text().contains(shown)) << QToolTip::text().toStdString();
        else // it fades out
            EXPECT_TRUE(QTest::qWaitFor([] { return !QToolTip::isVisible(); }, 2000));
    }
}

TEST_F(ItemWidgetTest, DrawsTheTitleInTheTextColourAndCutsItOutOfTheHighlight) {
    QPalette palette(Qt::white);
    palette.setColor(QPalette::WindowText, Qt::black);
    palette.setColor(QPalette::Highlight, Qt::blue);
    widget.setPalette(palette);
    const auto pixels = [&](auto wanted) {
        const QImage image = widget.grab().toImage();
        const int end = image.width() * (image.height() - 1); // without the line at the bottom edge
        int count = 0;
        for (int i = 0; i < end; ++i)
            count += wanted(image.pixelColor(i % image.width(), i / image.width())) ? 1 : 0;
        return count;
    };
    const auto dark = [](const QColor& c) { return c.lightness() < 60; };
    const auto blue = [](const QColor& c) { return c.blue() > 200 && c.red() < 60; };
    EXPECT_GT(pixels(dark), 20);
    EXPECT_EQ(pixels(blue), 0);
    extra->setMenuDown(true);
    EXPECT_EQ(pixels(dark), 0);
    EXPECT_GT(pixels(blue), widget.width() * 10);
    EXPECT_GT(pixels([](const QColor& c) { return c.lightness() > 200; }), 20)
        << "the title shows the bar's background";
}

} // namespace
