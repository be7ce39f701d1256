#include "platform/qt/QtMenu.h"

#include "tests/support/RecordingLog.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

using namespace platform;
using platform::qt::QtMenu;

namespace {

/// Disables "forbidden", throws when "throws" is validated, and records the chosen items.
class Target final : public MenuTarget {
  public:
    std::string chosen;
    bool validateMenuItem(const MenuItem& item) override {
        if (item.title() == "throws")
            throw 42;
        return item.title() != "forbidden";
    }
    MenuItem::Action choose() {
        return [this](MenuItem& item) { chosen += item.title() + ';'; };
    }
};

class QtMenuTest : public testing::Test {
  protected:
    static void press(QtMenu& shown, std::initializer_list<Qt::Key> keys) {
        shown.popup({});
        for (const Qt::Key key : keys) {
            QWidget* open = QApplication::activePopupWidget();
            QTest::keyClick(open ? open : &shown, key);
        }
    }

    test::RecordingLog log;
    std::shared_ptr<Target> target = std::make_shared<Target>();
    Menu menu;
};

TEST_F(QtMenuTest, ShowsTitlesStatesSeparatorsAndDisabledItems) {
    menu.addItem("Cut & paste\nx", target->choose(), target).setState(MenuItem::State::On);
    menu.addSeparator();
    menu.addItem("forbidden", target->choose(), target);
    menu.addItem("throws", target->choose(), target);
    menu.addItem("a heading", {}, target);
    const QtMenu shown(menu, "test.item");
    std::string rows;
    for (const QAction* action : shown.actions()) {
        rows += action->isSeparator() ? "----" : action->text().toStdString();
        rows += action->isChecked() ? " checked" : "";
        rows += action->isEnabled() ? "\n" : " disabled\n";
    }
    EXPECT_EQ(rows, "Cut && paste x checked\n----\nforbidden disabled\nthrows disabled\n"
                    "a heading disabled\n");
    EXPECT_TRUE(log.contains("test.item"))
        << "an exception from the target is logged with the owner";
    const auto cyclic = std::make_shared<Menu>();
    cyclic->addItem("itself", {}, target).setSubmenu(cyclic);
    EXPECT_FALSE(QtMenu(*cyclic, "test.item").actions().front()->isEnabled());
    cyclic->removeAllItems();
}

TEST_F(QtMenuTest, FollowsChangesOfTitlesAndStates) {
    MenuItem& item = menu.addItem("12:00", target->choose(), target);
    auto shown = std::make_unique<QtMenu>(menu, "test.item");
    item.setTitle("12:01");
    item.setState(MenuItem::State::On);
    EXPECT_EQ(shown->actions().front()->text(), "12:01");
    EXPECT_TRUE(shown->actions().front()->isChecked());
    shown.reset();
    item.setTitle("after the widget was destroyed");
}

TEST_F(QtMenuTest, LetsTheKeyboardChooseItemsAndLeaveTheMenu) {
    const auto submenu = std::make_shared<Menu>();
    submenu->addItem("inner", target->choose(), target);
    menu.addItem("first", target->choose(), target);
    menu.addItem("forbidden", target->choose(), target);
    menu.addItem("more", {}, target).setSubmenu(submenu);
    QtMenu shown(menu, "test.item");
    std::string directions;
    QObject::connect(&shown, &QtMenu::neighbourRequested,
                     [&](int direction) { directions += direction < 0 ? "left;" : "right;"; });

    press(shown, {Qt::Key_Down, Qt::Key_Return});
    press(shown, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return, Qt::Key_Return});
    EXPECT_EQ(target->chosen, "first;inner;") << "disabled items are skipped";
    press(shown, {Qt::Key_Left});
    press(shown, {Qt::Key_Down, Qt::Key_Right});
    press(shown, {Qt::Key_Up, Qt::Key_Right, Qt::Key_Left, Qt::Key_Escape});
    EXPECT_EQ(directions, "left;right;") << "inside the menu, the keys open and close submenus";
    EXPECT_FALSE(shown.isVisible());
    EXPECT_EQ(target->chosen, "first;inner;");
}

} // namespace
