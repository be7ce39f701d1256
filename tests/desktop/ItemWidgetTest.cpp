#include "apps/menubar/ItemWidget.h"

#include "menubar/HalvexMenuExtraBase.h"
#include "platform/qt/Desktop.h"
#include "tests/support/Fakes.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

#include <limits>

using namespace apps;

namespace {

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
    std::shared_ptr<HalvexMenuExtraBase> extra = std::make_shared<HalvexMenuExtraBase>();
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
    accessible->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    ASSERT_EQ(events.size(), 1U);
    EXPECT_EQ(events[0].modifierFlags, 0U);
    EXPECT_EQ(events[0].buttonNumber, 0);
}

TEST_F(ItemWidgetTest, IsAsWideAsAnItemOfAnyLength) {
    constexpr float kInfinity = std::numeric_limits<float>::infinity();
    for (const auto& [length, width] : {std::pair(20.5F, 33),
                                        {0.0F, 0},
                                        {-5.0F, 0},
                                        {-kInfinity, 0},
                                        {std::numeric_limits<float>::quiet_NaN(), 0},
                                        {3e9F, 100'012},
                                        {kInfinity, 100'012}}) {
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
        EXPECT_EQ(events.back().clickCount, clickCount) << "button " << buttonNumber;
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
