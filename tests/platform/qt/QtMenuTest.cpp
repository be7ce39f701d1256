#include "platform/qt/QtMenu.h"

#include "platform/EventSource.h"
#include "platform/qt/HandledEvent.h"
#include "platform/qt/MenuShortcut.h"
#include "platform/qt/QtGraphics.h"
#include "tests/support/RecordingLog.h"
#include "tests/support/RecordingView.h"

#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWidgetAction>

#include <gtest/gtest.h>

using namespace platform;
using platform::qt::QtMenu;

namespace {

/// Disables "forbidden", throws when "throws" is validated, and records the chosen items.
class Target final : public MenuTarget {
  public:
    std::string chosen;
    bool notesModifiers = false;
    std::function<void()> onWait = [] {};
    bool validateMenuItem(const MenuItem& item) override {
        if (item.title() == "throws")
            throw 42;
        if (item.title() == "waits")
            std::exchange(onWait, [] {})();
        return item.title() != "forbidden";
    }
    MenuItem::Action choose() {
        return [this](MenuItem& item) {
            chosen += item.title();
            if (notesModifiers)
                chosen += ' ' + std::to_string(qt::HandledEvent::current().modifierFlags);
            chosen += ';';
        };
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

    static std::string rows(const QtMenu& shown) {
        std::string rows;
        for (const QAction* action : shown.actions())
            rows += (action->isSeparator() ? "-" : action->text().toStdString()) + ';';
        return rows;
    }

    test::RecordingLog log;
    qt::QtGraphics graphics;
    ScopedService<Graphics> asGraphics{graphics};
    std::shared_ptr<Target> target = std::make_shared<Target>();
    std::shared_ptr<Menu> menu = std::make_shared<Menu>();
};

TEST_F(QtMenuTest, ShowsTitlesStatesSeparatorsAndDisabledItems) {
    menu->addItem("Cut & paste\nx", target->choose(), target).setState(MenuItem::State::On);
    menu->addSeparator();
    menu->addItem("forbidden", target->choose(), target);
    menu->addItem("throws", target->choose(), target);
    menu->addItem("a heading", {}, target);
    menu->addItem(MenuItem::sectionHeader("Header"));
    menu->addItem("m", target->choose(), target).setState(MenuItem::State::Mixed);
    menu->items().back()->setShortcut(KeyShortcut{Key::None, "m", kOptionKeyMask});
    QtMenu shown(menu, "test.item");
    auto* accessible = QAccessible::queryAccessibleInterface(&shown);
    std::string rows;
    for (int i = 0; i < accessible->childCount(); ++i) {
        const auto* row = accessible->child(i);
        rows += row->text(QAccessible::Name).toStdString();
        rows += row->role() == QAccessible::Separator ? "----" : "";
        rows += row->role() == QAccessible::Heading ? " heading" : "";
        rows += row->state().checked ? " checked" : "";
        rows += row->state().checkStateMixed ? " mixed " : "";
        rows += row->text(QAccessible::Accelerator).toStdString();
        rows += row->state().disabled ? " disabled\n" : "\n";
    }
    EXPECT_EQ(rows, "Cut & paste\nx checked\n---- disabled\nforbidden disabled\nthrows disabled\n"
                    "a heading disabled\nHeader heading disabled\nm mixed Alt+M\n");
    accessible->child(0)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    EXPECT_EQ(target->chosen, "Cut & paste\nx;");
    EXPECT_TRUE(log.contains("test.item"))
        << "an exception from the target is logged with the owner";
    const auto cyclic = std::make_shared<Menu>();
    cyclic->addItem("itself", {}, target).setSubmenu(cyclic);
    EXPECT_FALSE(QtMenu(cyclic, "test.item").actions().front()->isEnabled());
    cyclic->removeAllItems();
}

TEST_F(QtMenuTest, ShowsItsWidestTextInFull) {
    const auto image = graphics.imageByDrawing({20, 14}, [](GraphicsContext&) {});
    const auto add = [&](const std::string& text, const std::string& part) {
        MenuItem& item = menu->addItem(text, target->choose(), target);
        if (part == "subtitle") {
            item.setTitle("x");
            item.setSubtitle(text);
        } else if (part == "indented") {
            item.setImage(image);
            item.setIndentationLevel(3);
        }
    };
    const auto firstRow = [&] {
        QtMenu shown(menu, "test.item");
        shown.popup({});
        return shown.grab(shown.actionGeometry(shown.actions().front())).toImage();
    };
    // The widths of the texts have different fractions of a pixel.
    const std::string longest = "Illuminate the widest row, 1234 of 5678";
    for (std::size_t length = 10; length <= longest.size(); ++length)
        for (const char* part : {"title", "subtitle", "indented"}) {
            menu->removeAllItems();
            add(longest.substr(0, length), part);
            const QImage alone = firstRow();
            menu->addItem(std::string(60, 'W'), target->choose(), target);
            const QRect text = alone.rect().adjusted(12, 0, -12, 0); // without the round corners
            EXPECT_TRUE(alone.copy(text) == firstRow().copy(text)) << part << ' ' << length;
        }
}

TEST_F(QtMenuTest, FollowsChangesOfTitlesAndStates) {
    MenuItem& item = menu->addItem("12:00", target->choose(), target);
    auto shown = std::make_unique<QtMenu>(menu, "test.item");
    item.setTitle("12:01");
    item.setState(MenuItem::State::On);
    QCoreApplication::processEvents();
    EXPECT_EQ(shown->actions().front()->text(), "12:01");
    shown.reset();
    item.setTitle("after the widget was destroyed");
}

TEST_F(QtMenuTest, LetsTheKeyboardChooseItemsAndLeaveTheMenu) {
    const auto submenu = std::make_shared<Menu>();
    submenu->addItem("inner", target->choose(), target);
    menu->addItem("first", target->choose(), target);
    menu->addItem("forbidden", target->choose(), target);
    menu->addItem("more", {}, target).setSubmenu(submenu);
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

TEST_F(QtMenuTest, MirrorsTheArrowKeysForALayoutFromRightToLeft) {
    const auto submenu = std::make_shared<Menu>();
    submenu->addItem("inner", target->choose(), target);
    menu->addItem("more", {}, target).setSubmenu(submenu);
    QtMenu shown(menu, "test.item");
    shown.setLayoutDirection(Qt::RightToLeft);
    std::string directions;
    QObject::connect(&shown, &QtMenu::neighbourRequested,
                     [&](int direction) { directions += direction < 0 ? "left;" : "right;"; });
    press(shown, {Qt::Key_Left, Qt::Key_Right});
    press(shown, {Qt::Key_Down, Qt::Key_Left, Qt::Key_Return});
    EXPECT_EQ(target->chosen, "inner;") << "Left opens the submenu";
    press(shown, {Qt::Key_Down, Qt::Key_Left, Qt::Key_Right, Qt::Key_Right});
    EXPECT_EQ(directions, "left;right;right;") << "Right closes it";
}

/// Returns the visible part of a menu on the screen.
QRect panelOf(const QtMenu& shown) {
    return shown.panelRect().translated(shown.pos());
}

TEST_F(QtMenuTest, OpensBelowTheItemAndWithinTheScreen) {
    const auto submenu = std::make_shared<Menu>();
    submenu->addItem("inner", target->choose(), target);
    menu->addItem("more", {}, target).setSubmenu(submenu);
    const QRect screen = QGuiApplication::primaryScreen()->availableGeometry();
    const int top = screen.top() + 22;
    struct Row {
        Qt::LayoutDirection direction;
        int left; // of an item of 60 points
        bool linesUp;
        bool submenuIsRight;
    };
    for (const auto& [direction, left, linesUp, submenuIsRight] :
         {Row{Qt::LeftToRight, 300, true, true}, Row{Qt::RightToLeft, 300, true, false},
          Row{Qt::LeftToRight, screen.right() - 60, false, false},
          Row{Qt::RightToLeft, screen.left(), false, true}}) {
        QtMenu shown(menu, "test.item");
        shown.setLayoutDirection(direction);
        const QRect item(left, screen.top(), 60, 22);
        shown.popupBelow(item);
        const QRect panel = panelOf(shown);
        const bool isMirrored = direction == Qt::RightToLeft;
        EXPECT_EQ(isMirrored ? panel.right() == item.right() : panel.left() == item.left(), linesUp)
            << left;
        EXPECT_TRUE(screen.contains(panel)) << left;
        EXPECT_GE(panel.top(), top);
        EXPECT_LE(panel.top(), top + 4) << "the shadow is not a part of the menu";
        QTest::keyClick(&shown, Qt::Key_Down);
        QTest::keyClick(&shown, isMirrored ? Qt::Key_Left : Qt::Key_Right);
        const auto* const nested = shown.findChild<QtMenu*>();
        ASSERT_TRUE(nested && nested->isVisible());
        EXPECT_TRUE(screen.contains(panelOf(*nested))) << left;
        EXPECT_EQ(panelOf(*nested).center().x() > panel.center().x(), submenuIsRight) << left;
        EXPECT_LT((panelOf(*nested) & panel).width(), 10) << "beside the menu";
    }
}

TEST_F(QtMenuTest, PassesTheMouseInAShadowToWhatLiesBelow) {
    const auto submenu = std::make_shared<Menu>();
    for (const char* title : {"inner", "another"})
        submenu->addItem(title, target->choose(), target);
    menu->addItem("more", {}, target).setSubmenu(submenu);
    menu->addItem("below", target->choose(), target);
    QtMenu shown(menu, "test.item");
    ASSERT_TRUE(shown.hasShadow()) << "windows can be translucent on this platform";
    shown.popupBelow({300, 0, 60, 22});
    QTest::keyClick(&shown, Qt::Key_Down);
    QTest::keyClick(&shown, Qt::Key_Right);
    auto* const nested = shown.findChild<QtMenu*>();
    // In the shadow to the left of the submenu, over the second item of the menu.
    const int row = shown.actionGeometry(shown.actions()[1]).center().y();
    const QPoint overBelow = shown.mapToGlobal(QPoint(shown.panelRect().right() - 8, row));
    QTest::mouseClick(nested, Qt::LeftButton, {}, nested->mapFromGlobal(overBelow));
    EXPECT_EQ(target->chosen, "below;");

    shown.popupBelow({300, 0, 60, 22});
    QTest::mouseClick(&shown, Qt::LeftButton, {}, {2, 2});
    EXPECT_FALSE(shown.isVisible()) << "a click beside the menu";
}

/// Returns the first column from @p from towards @p to in which a row has text, or -1.
int firstInk(const QImage& picture, const QRect& row, int from, int to) {
    const QRgb background = picture.pixel(row.left() + 3, row.top() + 1);
    for (int x = from; x != to; x += from < to ? 1 : -1)
        for (int y = row.top() + 2; y < row.bottom() - 1; ++y)
            if (picture.pixel(x, y) != background)
                return x;
    return -1;
}

TEST_F(QtMenuTest, LinesUpNamesAndTrailingTextsAtBothEdges) {
    const std::pair<const char*, const char*> rowTexts[] = {
        {"Hi", "11:11"}, {"Hello, World", "20:00"}, {"HUD that has a longer name", "4:44"}};
    for (const auto& [title, trailing] : rowTexts)
        menu->addItem(title, target->choose(), target).setTrailingText(trailing);
    for (const auto direction : {Qt::LeftToRight, Qt::RightToLeft}) {
        QtMenu shown(menu, "test.item");
        shown.setLayoutDirection(direction);
        shown.popupBelow({300, 0, 60, 22});
        const QImage picture = shown.grab().toImage();
        std::vector<int> left, right;
        for (QAction* action : shown.actions()) {
            const QRect row = shown.actionGeometry(action);
            left.push_back(firstInk(picture, row, row.left() + 6, row.right() - 6));
            right.push_back(firstInk(picture, row, row.right() - 6, row.left() + 6));
        }
        constexpr int kBearing = 2; // letters begin and end at different distances from their box
        for (const auto& edges : {left, right})
            for (const int edge : edges) {
                EXPECT_GE(edge, 0);
                EXPECT_NEAR(edge, edges.front(), kBearing) << direction;
            }
    }
}

TEST_F(QtMenuTest, FollowsEveryChangeWhileItIsOpen) {
    for (const char* title : {"a", "b", "c"})
        menu->addItem(title, target->choose(), target);
    QtMenu shown(menu, "test.item");
    press(shown, {Qt::Key_Down, Qt::Key_Down});
    const int height = shown.height();
    menu->removeItem(*menu->items()[0]);
    menu->insertItem(std::make_shared<MenuItem>("first"), 0);
    menu->insertItem(MenuItem::separatorItem(), 1);
    menu->addItem("last", {}, target).setHidden(true);
    menu->items()[2]->setTitle("b!");
    menu->items()[3]->setTrailingText("1 & 2");
    EXPECT_EQ(shown.height(), height) << "resized once, later";
    QCoreApplication::processEvents();
    EXPECT_EQ(rows(shown), "first;-;b!;c, 1 && 2;");
    EXPECT_GT(shown.height(), height);
    EXPECT_EQ(shown.activeAction()->text(), "b!") << "the highlight stays";
    EXPECT_TRUE(menu->items()[2]->isHighlighted());

    const auto c = menu->items()[3];
    menu->removeItem(*c);
    menu->insertItem(c, 0);
    menu->items().back()->setHidden(false);
    QCoreApplication::processEvents();
    EXPECT_EQ(rows(shown), "c, 1 && 2;first;-;b!;last;");
    EXPECT_EQ(shown.activeAction()->text(), "b!");
    menu->removeItem(*menu->items()[3]);
    QCoreApplication::processEvents();
    EXPECT_EQ(shown.activeAction(), nullptr);
    for (int i = 0; i < 100; ++i)
        menu->addItem("more", target->choose(), target);
    QCoreApplication::processEvents();
    EXPECT_TRUE(shown.screen()->geometry().contains(shown.geometry())) << "scrolls instead";
    menu->removeAllItems();
    QCoreApplication::processEvents();
    EXPECT_FALSE(shown.isVisible());
}

TEST_F(QtMenuTest, ScrollsToTheRowThatTheKeyboardSelects) {
    for (int i = 0; i < 100; ++i)
        menu->addItem(std::to_string(i), target->choose(), target);
    QtMenu shown(menu, "test.item");
    shown.popupBelow({300, 0, 60, 22});
    for (const auto& [key, title] : {std::pair(Qt::Key_Up, "99"),
                                     {Qt::Key_Up, "98"},
                                     {Qt::Key_Down, "99"},
                                     {Qt::Key_Down, "0"},
                                     {Qt::Key_Down, "1"}}) {
        QTest::keyClick(&shown, key);
        ASSERT_TRUE(shown.activeAction());
        EXPECT_EQ(shown.activeAction()->text(), title);
        EXPECT_TRUE(shown.panelRect().contains(shown.actionGeometry(shown.activeAction())))
            << title;
    }
}

TEST_F(QtMenuTest, SurvivesATargetThatRunsAnEventLoopAndChangesTheMenu) {
    for (const char* title : {"a", "waits", "c"})
        menu->addItem(title, target->choose(), target);
    target->onWait = [this] {
        menu->removeItem(*menu->items()[0]);
        QCoreApplication::processEvents();
    };
    const QtMenu shown(menu, "test.item");
    QCoreApplication::processEvents();
    EXPECT_EQ(rows(shown), "waits;c;");
}

TEST_F(QtMenuTest, ShowsAlternatesWhileTheirModifiersAreHeld) {
    menu->addItem("quit", target->choose(), target);
    menu->addItem("force", target->choose(), target).setAlternateModifiers(kOptionKeyMask);
    menu->addItem("both", {}, target).setAlternateModifiers(kOptionKeyMask | kShiftKeyMask);
    menu->addItem("other", target->choose(), target);
    QtMenu shown(menu, "test.item");
    press(shown, {Qt::Key_Down});
    const QSize size = shown.size();
    using Row = std::tuple<QEvent::Type, Qt::Key, Qt::KeyboardModifiers, const char*>;
    for (const auto& [type, key, modifiers, expected] :
         {Row{QEvent::KeyPress, Qt::Key_Alt, {}, "force;other;"},
          {QEvent::KeyPress, Qt::Key_Shift, Qt::AltModifier, "both;other;"},
          {QEvent::KeyRelease, Qt::Key_Alt, Qt::AltModifier | Qt::ShiftModifier, "quit;other;"},
          {QEvent::KeyRelease, Qt::Key_Shift, Qt::ShiftModifier, "quit;other;"},
          {QEvent::KeyPress, Qt::Key_Alt, Qt::AltModifier, "force;other;"}}) {
        QKeyEvent event(type, key, modifiers);
        QApplication::sendEvent(&shown, &event);
        EXPECT_EQ(rows(shown), expected);
        EXPECT_EQ(shown.size(), size);
        EXPECT_TRUE(shown.activeAction());
    }
    QTest::keyClick(&shown, Qt::Key_Return, Qt::AltModifier);
    EXPECT_EQ(target->chosen, "force;");
}

TEST_F(QtMenuTest, PerformsShortcutsWithTheModifiersOfTheMoment) {
    const auto submenu = std::make_shared<Menu>();
    const auto add = [&](Menu& to, const char* title, KeyShortcut shortcut) {
        to.addItem(title, target->choose(), target).setShortcut(shortcut);
    };
    add(*menu, "forbidden", {Key::None, "k", kControlKeyMask});
    add(*menu, "k", {Key::None, "K", kControlKeyMask});
    add(*menu, "?", {Key::None, "?", 0});
    add(*menu, "delete", {Key::Delete, {}, 0});
    menu->addItem("more", {}, target).setSubmenu(submenu);
    add(*submenu, "nested", {Key::Delete, {}, kShiftKeyMask});
    submenu->addItem("cycle", {}, target).setSubmenu(menu);
    std::string shortcuts;
    for (const auto& item : menu->items())
        if (item->shortcut())
            shortcuts += qt::shortcutText(*item->shortcut()).toStdString() + ';';
    EXPECT_EQ(shortcuts, "Ctrl+K;Ctrl+K;?;Del;");
    using Row = std::tuple<Qt::Key, Qt::KeyboardModifiers, const char*, std::string>;
    for (const auto& [key, modifiers, text, chosen] :
         {Row{Qt::Key_K, Qt::ControlModifier, "\x0b", "k 262144;"},
          {Qt::Key_K, Qt::ControlModifier | Qt::ShiftModifier, "\x0b", ""},
          {Qt::Key_K, {}, "k", ""},
          {Qt::Key_Question, Qt::ShiftModifier, "?", "? 131072;"},
          {Qt::Key_Delete, {}, "\x7f", "delete 0;"},
          {Qt::Key_Delete, Qt::ShiftModifier, "\x7f", "nested 131072;"}}) {
        QtMenu shown(menu, "test.item");
        shown.popup({});
        target->chosen.clear();
        target->notesModifiers = true;
        QKeyEvent event(QEvent::KeyPress, key, modifiers, text);
        QApplication::sendEvent(&shown, &event);
        EXPECT_EQ(target->chosen, chosen) << text;
        EXPECT_EQ(shown.isVisible(), chosen.empty());
    }
    submenu->removeAllItems();
}

/// A menu with an item, a view of 40 x 20 points, and another item.
class ViewInMenuTest : public QtMenuTest {
  protected:
    ViewInMenuTest() {
        menu->addItem("before, which is wider", target->choose(), target);
        menu->addItem("view", {}, target).setView(view, MenuItem::ViewStyle::FillsWidth);
        menu->addItem("after", target->choose(), target);
        shown = std::make_unique<QtMenu>(menu, "test.item");
        shown->popup({});
    }
    QWidget* widget() { return static_cast<QWidgetAction*>(viewAction())->defaultWidget(); }
    QAction* viewAction() { return shown->actions()[1]; }

    std::shared_ptr<test::RecordingView> view = std::make_shared<test::RecordingView>(40, 20);
    std::unique_ptr<QtMenu> shown;
};

TEST_F(ViewInMenuTest, ReceivesTheMouseWithoutClosingTheMenu) {
    QTest::mouseMove(widget(), {5, 6});
    QTest::mouseClick(widget(), Qt::LeftButton, {}, {3, 4});
    EXPECT_EQ(shown->activeAction(), viewAction());
    EXPECT_TRUE(menu->items()[1]->isHighlighted());
    QTest::mouseMove(shown.get(), shown->actionGeometry(shown->actions()[2]).center());
    EXPECT_EQ(view->calls, "move 5,14;down1 3,16;up0 3,16;exit;");
    EXPECT_FALSE(menu->items()[1]->isHighlighted());
    EXPECT_TRUE(shown->isVisible());
    view->onMouseDown = [&] { view->container()->dismiss(); };
    QTest::mouseClick(widget(), Qt::LeftButton, {}, {3, 4});
    EXPECT_FALSE(shown->isVisible());
}

TEST_F(ViewInMenuTest, ReceivesKeysWhileHighlighted) {
    struct Row {
        Qt::Key key;
        bool handles;
        int active;
        bool isOpen = true;
    };
    for (const auto& [key, handles, active, isOpen] : {Row{Qt::Key_Down, true, 0},
                                                       {Qt::Key_Down, true, 1},
                                                       {Qt::Key_Down, true, 1},
                                                       {Qt::Key_Up, false, 0},
                                                       {Qt::Key_Down, false, 1},
                                                       {Qt::Key_Return, false, 1},
                                                       {Qt::Key_Down, false, 2},
                                                       {Qt::Key_Up, false, 1},
                                                       {Qt::Key_Escape, true, 1},
                                                       {Qt::Key_Escape, false, 1, false}}) {
        view->handles = handles;
        QTest::keyClick(shown.get(), key);
        EXPECT_EQ(shown->isVisible(), isOpen) << key;
        if (isOpen) {
            EXPECT_EQ(shown->actions().indexOf(shown->activeAction()), active) << key;
        }
    }
    EXPECT_EQ(target->chosen, "");
}

TEST_F(ViewInMenuTest, ReceivesKeysAtTheTopOfAMenuWithoutAHighlightedItem) {
    menu->removeItem(*menu->items()[0]);
    QCoreApplication::processEvents();
    for (const auto& [handles, active, calls] :
         {std::tuple(false, -1, "key10;"), {true, 0, "key10;"}, {true, 0, "key10;"}}) {
        view->handles = handles;
        QTest::keyClick(shown.get(), Qt::Key_PageUp);
        EXPECT_EQ(shown->actions().indexOf(shown->activeAction()), active);
        EXPECT_EQ(view->takeCalls(), calls);
    }
}

TEST_F(ViewInMenuTest, FollowsTheSizeOfTheView) {
    EXPECT_EQ(view->frame().size.height, 20);
    EXPECT_GT(view->frame().size.width, 100) << "as wide as the menu";
    const QSize before = shown->size();
    view->setFrameSize({500, 50});
    QCoreApplication::processEvents();
    EXPECT_EQ(shown->height(), before.height() + 30);
    EXPECT_GE(shown->width(), 500);
    EXPECT_EQ(view->frame().size.width, widget()->width());
    menu->items()[1]->setView(view);
    QCoreApplication::processEvents();
    view->setFrameSize({70, 50});
    QCoreApplication::processEvents();
    EXPECT_EQ(view->frame().size, (Size{70, 50}));
    EXPECT_EQ(shown->width(), before.width());
}

TEST_F(ViewInMenuTest, SurvivesTheRemovalOfItsItemWhileItsCodeRuns) {
    view->onMouseDown = [&] {
        menu->removeItem(*menu->items()[1]);
        QCoreApplication::processEvents(); // as a dialog does
        view->setNeedsDisplay(true);
    };
    QTest::mousePress(widget(), Qt::LeftButton, {}, {3, 4});
    EXPECT_EQ(shown->actions().size(), 2);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(view->container(), nullptr);

    menu->items()[0]->setView(view);
    QCoreApplication::processEvents();
    EXPECT_NE(view->container(), nullptr) << "a view can be added again";
    shown.reset();
    EXPECT_EQ(view->container(), nullptr);
}

TEST_F(ViewInMenuTest, IsAMenuItemForScreenReaders) {
    view->texts = {"June", "Monday", "Arrow keys move"};
    auto* accessible = QAccessible::queryAccessibleInterface(shown.get())->child(1);
    EXPECT_EQ(accessible->role(), QAccessible::MenuItem);
    EXPECT_EQ(accessible->text(QAccessible::Name), "June");
    EXPECT_EQ(accessible->text(QAccessible::Value), "Monday");
    EXPECT_EQ(accessible->text(QAccessible::Description), "Arrow keys move");
    view->texts = {};
    EXPECT_EQ(accessible->text(QAccessible::Name), "view") << "the item's title";
}

} // namespace
