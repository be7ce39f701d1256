#include "platform/qt/QtMenu.h"

#include "tests/support/RecordingLog.h"

#include <QApplication>
#include <QTest>

#include <gtest/gtest.h>

using platform::Menu;
using platform::MenuItem;
using platform::MenuTarget;
using platform::qt::QtMenu;

namespace {

/// Allows some titles and records what was chosen.
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

TEST_F(QtMenuTest, ShowsTitlesStatesSeparatorsAndWhatCanBeChosen) {
    menu.addItem("Cut & paste\nx", target->choose(), target).setState(MenuItem::State::On);
    menu.addSeparator();
    menu.addItem("forbidden", target->choose(), target);
    menu.addItem("throws", target->choose(), target);
    menu.addItem("a heading", {}, target);
    menu.addItem("free", target->choose(), target);
    const QtMenu shown(menu, "test.item");
    struct Row {
        const char* text;
        bool separator, enabled, checked;
    };
    const std::vector<Row> rows{
        {"Cut && paste x", false, true, true}, {"", true, true, false},
        {"forbidden", false, false, false},    {"throws", false, false, false},
        {"a heading", false, false, false},    {"free", false, true, false}};
    const auto actions = shown.actions();
    ASSERT_EQ(static_cast<std::size_t>(actions.size()), rows.size());
    for (std::size_t i = 0; i < rows.size(); ++i) {
        const QAction& action = *actions[static_cast<qsizetype>(i)];
        EXPECT_EQ(action.text().toStdString(), rows[i].text);
        EXPECT_EQ(action.isSeparator(), rows[i].separator) << rows[i].text;
        EXPECT_EQ(action.isChecked(), rows[i].checked) << rows[i].text;
        if (!rows[i].separator) {
            EXPECT_EQ(action.isEnabled(), rows[i].enabled) << rows[i].text;
        }
    }
    EXPECT_TRUE(log.contains("test.item")) << "what a target throws is logged with its name";
}

TEST_F(QtMenuTest, FollowsTitlesAndStatesWhileItIsOpen) {
    MenuItem& item = menu.addItem("12:00", target->choose(), target);
    {
        const QtMenu shown(menu, "test.item");
        item.setTitle("12:01");
        item.setState(MenuItem::State::On);
        EXPECT_EQ(shown.actions().front()->text(), "12:01");
        EXPECT_TRUE(shown.actions().front()->isChecked());
    }
    item.setTitle("nobody shows this any more");
}

TEST_F(QtMenuTest, TheKeyboardChoosesInMenusAndSubmenusAndLeadsOut) {
    const auto submenu = std::make_shared<Menu>();
    submenu->addItem("inner", target->choose(), target);
    menu.addItem("first", target->choose(), target);
    menu.addItem("forbidden", target->choose(), target);
    menu.addItem("more", {}, target).setSubmenu(submenu);
    QtMenu shown(menu, "test.item");
    std::vector<int> neighbours;
    QObject::connect(&shown, &QtMenu::neighbourWanted,
                     [&](int direction) { neighbours.push_back(direction); });

    press(shown, {Qt::Key_Down, Qt::Key_Return});
    EXPECT_EQ(target->chosen, "first;");
    press(shown, {Qt::Key_Down, Qt::Key_Down, Qt::Key_Return, Qt::Key_Return});
    EXPECT_EQ(target->chosen, "first;inner;") << "what is disabled is passed over";
    press(shown, {Qt::Key_Left});
    press(shown, {Qt::Key_Down, Qt::Key_Right});
    press(shown, {Qt::Key_Up, Qt::Key_Right, Qt::Key_Left, Qt::Key_Escape});
    EXPECT_EQ(neighbours, (std::vector<int>{-1, 1})) << "a submenu opens and closes first";
    EXPECT_FALSE(shown.isVisible());
    EXPECT_EQ(target->chosen, "first;inner;");
}

} // namespace
