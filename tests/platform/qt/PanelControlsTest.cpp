#include "platform/base/Exception.h"
#include "platform/qt/PanelControl.h"
#include "platform/qt/PanelStyle.h"
#include "platform/qt/PanelWidget.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/QtPanelService.h"
#include "platform/widgets/Label.h"
#include "platform/widgets/ListBox.h"
#include "platform/widgets/MenuExtra.h"
#include "platform/widgets/Panel.h"
#include "platform/widgets/Slider.h"
#include "platform/widgets/TextField.h"
#include "platform/widgets/ViewBox.h"
#include "tests/support/RecordingLog.h"

#include <gmock/gmock.h>

#include <QAbstractItemView>
#include <QAccessible>
#include <QApplication>
#include <QTest>
#include <QWheelEvent>

#include <cmath>
#include <map>

using namespace platform;
using platform::qt::PanelControl;
using platform::qt::PanelWidget;
using testing::ElementsAre;

namespace {

constexpr Size kSize{200, 200};

/// Records what happens to it.
class View final : public MenuExtraView {
  public:
    explicit View(std::vector<std::string>& lines) : lines_(lines) {}
    void mouseDown(const Event& event) override {
        lines_.push_back("view " + std::to_string(static_cast<int>(event.location.y)));
    }
    bool keyDown(const KeyEvent& event) override {
        lines_.push_back("view key");
        return event.key == Key::Left;
    }
    AccessibleDescription accessibleDescription() const override { return {.value = "3"}; }

  private:
    std::vector<std::string>& lines_;
};

/// A panel without a margin whose background reports clicks.
class PlainPanel final : public Panel {
  public:
    explicit PlainPanel(std::vector<std::string>& lines) : lines_(lines) {}
    void mouseUp(const Event&) override { lines_.push_back("background"); }

  private:
    std::vector<std::string>& lines_;
};

/// A panel with one control of each kind, 20 points high, from the top: field, slider, button,
/// disabled button, view; and a list below them.
class PanelControls : public testing::Test {
  protected:
    PanelControls() {
        panel->initWithContentRect({{}, kSize}, kTitledWindowMask | kClosableWindowMask,
                                   BackingStore::Buffered, false);
        field->setText("old");
        field->setChangeHandler([this](const std::string& text) { record("edit " + text); });
        field->setCommitHandler([this](const std::string& text) { record("commit " + text); });
        slider->setRange(10, 20);
        slider->setHandler([this](double value) { record("slider " + number(value)); });
        button->setHandler([this] { record("button"); });
        disabled->setEnabled(false);
        disabled->setHandler([this] { record("disabled"); });
        list->setRows({{"Ada", "1815"}, {"Bob"}, {"Eve"}});
        list->setSelectionHandler([this](std::optional<std::size_t> row) {
            record("select " + (row ? std::to_string(*row) : "none"));
        });
        list->setActivationHandler(
            [this](std::size_t row) { record("activate " + std::to_string(row)); });
        panel->setCloseObserver([this] { record("close"); });
        for (const std::shared_ptr<Control>& control :
             std::initializer_list<std::shared_ptr<Control>>{field, slider, button, disabled, box,
                                                             list})
            panel->contentView().addControl(control);
        panel->makeKeyAndOrderFront();
        for (QWidget* window : QApplication::topLevelWidgets())
            if (auto* found = qobject_cast<PanelWidget*>(window); found && found->isVisible())
                widget = found;
        EXPECT_TRUE(QTest::qWaitForWindowActive(widget));
    }

    static Rect row(int index) { return {{0, kSize.height - 20 * (index + 1)}, {kSize.width, 20}}; }
    static std::string number(double value) { return QString::number(value).toStdString(); }
    void record(const std::string& line) {
        lines.push_back(line);
        const auto action = onLine;
        action();
    }
    std::vector<std::string> taken() { return std::exchange(lines, {}); }

    QWidget* shown(const Control& control) const {
        for (QObject* child : widget->findChildren<QObject*>())
            if (auto* found = dynamic_cast<PanelControl*>(child); found && found->shows(control))
                return &found->widget();
        return nullptr;
    }
    /// Sends a key to what has the focus, with the window's own keys.
    static void press(Qt::Key key, Qt::KeyboardModifiers modifiers = {}) {
        QTest::keyClick(QApplication::focusWidget(), key, modifiers);
    }
    /// Clicks a point of the panel's content, given from its top left corner.
    void click(int x, int y) {
        const QPoint point(x, static_cast<int>(kPanelTitleBarHeight) + y);
        QWidget* const target = widget->childAt(point);
        QTest::mouseClick(target, Qt::LeftButton, {}, target->mapFrom(widget.data(), point));
    }

    qt::QtGraphics graphics;
    ScopedService<Graphics> graphicsService{graphics};
    qt::QtPanelService panels;
    ScopedService<PanelService> panelService{panels};
    test::RecordingLog log;
    std::vector<std::string> lines;
    std::function<void()> onLine = [] {};
    std::shared_ptr<Panel> panel = std::make_shared<PlainPanel>(lines);
    std::shared_ptr<TextField> field = std::make_shared<TextField>(row(0));
    std::shared_ptr<Slider> slider = std::make_shared<Slider>(row(1));
    std::shared_ptr<Button> button = std::make_shared<Button>(row(2));
    std::shared_ptr<Button> disabled = std::make_shared<Button>(row(3));
    std::shared_ptr<MenuExtraView> view = std::make_shared<View>(lines)->initWithFrame(row(4));
    std::shared_ptr<ViewBox> box = std::make_shared<ViewBox>(view);
    std::shared_ptr<ListBox> list = std::make_shared<ListBox>(Rect{{0, 0}, {kSize.width, 90}});
    QPointer<PanelWidget> widget;
};

TEST_F(PanelControls, EditTextInAFieldThatHasTheFirstFocus) {
    ASSERT_EQ(QApplication::focusWidget(), shown(*field));
    QTest::keyClicks(shown(*field), "ab"); // replaces the selected text
    EXPECT_THAT(taken(), ElementsAre("edit a", "edit ab"));
    press(Qt::Key_Return);
    press(Qt::Key_Return);
    EXPECT_THAT(taken(), ElementsAre("commit ab", "commit ab"));
    press(Qt::Key_Backspace);
    press(Qt::Key_Tab);
    EXPECT_THAT(taken(), ElementsAre("edit a", "commit a"));
    field->focus();
    press(Qt::Key_Tab);
    EXPECT_THAT(taken(), ElementsAre()) << "the text has not changed";

    field->setText("two\nlines");
    field->selectText();
    press(Qt::Key_C, Qt::ControlModifier);
    press(Qt::Key_End);
    press(Qt::Key_V, Qt::ControlModifier);
    EXPECT_THAT(taken(), ElementsAre("edit two linestwo lines"));
    press(Qt::Key_Z, Qt::ControlModifier);
    EXPECT_EQ(field->text(), "two lines");
    press(Qt::Key_X);
    taken();
    press(Qt::Key_Escape);
    EXPECT_THAT(taken(), ElementsAre("edit two lines", "close"));
    EXPECT_FALSE(widget->isVisible());

    panel->makeKeyAndOrderFront();
    QTest::keyClicks(shown(*field), "z");
    panel->orderOut();
    EXPECT_THAT(taken(), ElementsAre("edit z", "commit z"));
}

TEST_F(PanelControls, StepAFieldWithTheArrowKeys) {
    press(Qt::Key_Up);
    EXPECT_THAT(taken(), ElementsAre()) << "there is no handler";
    field->setStepHandler([this](int direction) { record("step " + std::to_string(direction)); });
    press(Qt::Key_Up);
    press(Qt::Key_Down);
    press(Qt::Key_Left);
    EXPECT_THAT(taken(), ElementsAre("step 1", "step -1"));
    press(Qt::Key_Up, Qt::ControlModifier);
    EXPECT_THAT(taken(), ElementsAre());
}

TEST_F(PanelControls, MoveASliderWithinItsRange) {
    auto* const shownSlider = shown(*slider);
    slider->setValue(15);
    slider->focus();
    press(Qt::Key_Right);
    press(Qt::Key_PageDown);
    press(Qt::Key_Home);
    press(Qt::Key_End);
    EXPECT_THAT(taken(), ElementsAre("slider 15.1", "slider 14.1", "slider 10", "slider 20"));
    click(100, 30);
    EXPECT_NEAR(slider->value(), 15, 0.1);
    slider->setValue(14.9);
    slider->setNumberOfTickMarks(6);
    slider->setAllowsTickMarkValuesOnly(true);
    EXPECT_EQ(slider->value(), 14);
    taken();
    press(Qt::Key_Right);
    QWheelEvent wheel({100, 10}, shownSlider->mapToGlobal(QPointF(100, 10)), {}, {0, 120}, {}, {},
                      Qt::NoScrollPhase, false);
    QApplication::sendEvent(shownSlider, &wheel);
    EXPECT_THAT(taken(), ElementsAre("slider 16", "slider 18"));

    const auto drag = [&] {
        QTest::mousePress(shownSlider, Qt::LeftButton, {}, {100, 10});
        QMouseEvent move(QEvent::MouseMove, QPointF(199, 10), shownSlider->mapToGlobal(QPointF()),
                         Qt::NoButton, Qt::LeftButton, {});
        QApplication::sendEvent(shownSlider, &move);
        QTest::mouseRelease(shownSlider, Qt::LeftButton, {}, {199, 10});
        return taken();
    };
    slider->setAllowsTickMarkValuesOnly(false);
    EXPECT_EQ(drag().size(), 2U);
    slider->setContinuous(false);
    EXPECT_THAT(drag(), ElementsAre("slider 20"));
    slider->setRange(5, 1);
    EXPECT_EQ(slider->value(), 5);
    slider->setVertical(true);
    EXPECT_THAT(taken(), ElementsAre());
}

TEST_F(PanelControls, SelectAndActivateRowsOfAList) {
    list->setSelectedRow(0);
    list->focus();
    press(Qt::Key_Down);
    press(Qt::Key_End);
    QTest::keyClicks(shown(*list), "a");
    press(Qt::Key_Return);
    EXPECT_THAT(taken(), ElementsAre("select 1", "select 2", "select 0", "activate 0"));
    auto* const rows = qobject_cast<QAbstractItemView*>(shown(*list));
    QTest::mouseClick(rows->viewport(), Qt::LeftButton, {}, {50, 36});
    QTest::mouseDClick(rows->viewport(), Qt::LeftButton, {}, {50, 36});
    EXPECT_THAT(taken(), ElementsAre("select 1", "activate 1"));
    EXPECT_EQ(list->selectedRow(), 1U);

    const auto isSelected = [&](int row) {
        return rows->model()->rowCount() == static_cast<int>(list->rows().size()) &&
               rows->selectionModel()->isRowSelected(row);
    };
    list->insertRow(0, {"First"});
    EXPECT_TRUE(list->selectedRow() == 2U && isSelected(2));
    list->removeRow(1);
    EXPECT_TRUE(list->selectedRow() == 1U && isSelected(1));
    list->removeRow(1);
    EXPECT_TRUE(!list->selectedRow() && !isSelected(1) && !isSelected(0));
    list->setRows(std::vector<ListRow>(5000, {"Row"}));
    list->setSelectedRow(4321);
    EXPECT_TRUE(isSelected(4321));
    EXPECT_THROW(list->setSelectedRow(5000), Exception);
    EXPECT_THROW(list->removeRow(5000), Exception);
    EXPECT_THAT(taken(), ElementsAre());
    press(Qt::Key_Up);
    EXPECT_THAT(taken(), ElementsAre("select 4320"));
}

TEST_F(PanelControls, DrawATemplateInAListInTheColourOfItsText) {
    const auto square = [](GraphicsContext& context) {
        context.fillRect({{0, 0}, {16, 16}}, deviceRGB(1, 0, 0), CompositingOperation::SourceOver);
    };
    const auto drawn = graphics.imageByDrawing({16, 16}, square);
    list->setRows({{"", "", drawn}, {"", "", graphics.templateImage(drawn)}});
    const QImage picture = shown(*list)->grab().toImage();
    const auto at = [&](int row) {
        const auto* const rows = qobject_cast<QAbstractItemView*>(shown(*list));
        const QRect area = rows->visualRect(rows->model()->index(row, 0));
        return picture.pixelColor(rows->viewport()->mapToParent(area.topLeft()) + QPoint(14, 12));
    };
    EXPECT_EQ(at(0), QColor(Qt::red));
    EXPECT_EQ(at(1), shown(*list)->palette().color(QPalette::Text));
}

TEST_F(PanelControls, ShowAViewThatIsClickedTypedIntoAndResized) {
    EXPECT_EQ(view->container(), dynamic_cast<ViewContainer*>(shown(*box)));
    EXPECT_THROW(ViewBox{view}, Exception) << "it is already shown";
    click(50, 82);
    press(Qt::Key_Left);
    press(Qt::Key_Return); // goes on to the panel
    EXPECT_THAT(taken(), ElementsAre("view 18", "view key", "view key"));
    box->setFrame({{0, 100}, {150, 30}});
    EXPECT_EQ(view->frame().size, (Size{150, 30}));
    view->setFrameSize({120, 25});
    EXPECT_EQ(box->frame(), (Rect{{0, 100}, {120, 25}}));
    EXPECT_EQ(shown(*box)->size(), QSize(120, 25));
    panel->contentView().removeControl(box);
    EXPECT_FALSE(view->container());
    panel->contentView().addControl(std::make_shared<ViewBox>(view));
    view->container()->dismiss();
    EXPECT_THAT(taken(), ElementsAre("close"));
}

TEST_F(PanelControls, PassReturnToTheDefaultButtonAndNothingElseToTheBackground) {
    const auto pressOn = [this](const std::shared_ptr<Control>& control, Qt::Key key) {
        control ? control->focus() : widget->setFocus();
        taken();
        press(key);
        return taken();
    };
    EXPECT_THAT(pressOn(nullptr, Qt::Key_Return), ElementsAre("background"));
    EXPECT_THAT(pressOn(slider, Qt::Key_Return), ElementsAre());
    EXPECT_THAT(pressOn(slider, Qt::Key_Space), ElementsAre());
    EXPECT_THAT(pressOn(field, Qt::Key_Return), ElementsAre("commit old"));
    const auto ok = std::make_shared<Button>(Rect{});
    EXPECT_THROW(panel->contentView().setDefaultButton(ok), Exception);
    ok->setHandler([this] { record("ok"); });
    panel->contentView().addControl(ok);
    EXPECT_THROW(panel->contentView().addControl(ok), Exception);
    panel->contentView().setDefaultButton(ok);
    list->setSelectedRow(1);
    const std::pair<std::shared_ptr<Control>, std::vector<std::string>> cases[] = {
        {nullptr, {"ok"}},    {slider, {"ok"}},       {field, {"commit old", "ok"}},
        {button, {"button"}}, {list, {"activate 1"}}, {box, {"view key", "ok"}},
    };
    for (const auto& [focused, expected] : cases)
        EXPECT_EQ(pressOn(focused, Qt::Key_Return), expected);
    list->setActivationHandler({});
    EXPECT_THAT(pressOn(list, Qt::Key_Return), ElementsAre("ok"));
    ok->setEnabled(false);
    EXPECT_THAT(pressOn(slider, Qt::Key_Return), ElementsAre());

    click(10, 70); // the disabled button
    EXPECT_THAT(taken(), ElementsAre());
    disabled->setHidden(true);
    click(10, 70);
    EXPECT_THAT(taken(), ElementsAre("background"));
}

TEST_F(PanelControls, DrawTemplateImagesInTheColourOfTheirText) {
    const auto icon =
        graphics.templateImage(graphics.imageByDrawing({16, 16}, [](GraphicsContext& context) {
            context.fillRect({{}, {16, 16}}, deviceRGB(1, 0, 1), CompositingOperation::Copy);
        }));
    for (const auto& one : {button, disabled}) {
        one->setImage(icon);
        one->setImagePosition(ImagePosition::ImageOnly);
    }
    list->setRows({{"Ada", "", icon}, {"Bob", "", icon}});
    list->setSelectedRow(1);
    shown(*list)->setFocus();
    const auto pixel = [&](const Control& control, QPoint at) {
        return shown(control)->grab().toImage().pixelColor(at);
    };
    const QPalette palette = shown(*list)->palette();
    const QPoint center(100, 10), first(16, 14), second(16, 38);
    EXPECT_EQ(pixel(*button, center), palette.color(QPalette::WindowText));
    EXPECT_EQ(pixel(*list, first), palette.color(QPalette::Text));
    EXPECT_EQ(pixel(*list, second), qt::PanelColors(palette).accentText);
    EXPECT_NE(pixel(*list, first), pixel(*list, second));
    panel->contentView().setDefaultButton(button);
    EXPECT_EQ(pixel(*button, center), palette.color(QPalette::HighlightedText));
    list->setEnabled(false);
    EXPECT_EQ(pixel(*list, first), palette.color(QPalette::Disabled, QPalette::Text));
    EXPECT_NE(pixel(*disabled, center), pixel(*button, center)) << "paler";
}

TEST(PanelPalettes, HaveLegibleTextsOnEveryGround) {
    const QPalette before = QApplication::palette();
    for (const int application : {0x20, 0xf0}) {
        QPalette desktop(QColor(application, application, application));
        desktop.setColor(QPalette::Disabled, QPalette::Text, QColor(0x8a, 0x8a, 0x8d));
        QApplication::setPalette(desktop);
        for (const double ground : {0.1, 0.9}) {
            const QPalette palette =
                qt::panelPalette({.backgroundColor = calibratedWhite(ground)}, false);
            for (const auto group : {QPalette::Active, QPalette::Disabled})
                for (const auto role : {QPalette::Text, QPalette::PlaceholderText}) {
                    const QColor color = palette.color(group, role);
                    const double contrast = std::abs(color.lightnessF() - ground) * color.alphaF();
                    EXPECT_GT(contrast, 0.15) << application << ' ' << ground << ' ' << role;
                }
        }
    }
    QApplication::setPalette(before);
}

TEST_F(PanelControls, FollowTabInTheOrderOfAdditionAndCanBeRemoved) {
    const auto walk = [this] {
        std::vector<const QWidget*> order;
        widget->setFocus();
        for (int step = 0; step < 4; ++step) {
            press(Qt::Key_Tab);
            order.push_back(QApplication::focusWidget());
        }
        return order;
    };
    EXPECT_THAT(walk(), ElementsAre(shown(*field), shown(*slider), shown(*button), shown(*box)));
    panel->contentView().removeControl(slider);
    panel->contentView().removeControl(slider); // ignored
    button->setHidden(true);
    panel->contentView().addControl(slider);
    EXPECT_THAT(walk(), ElementsAre(shown(*field), shown(*box), shown(*list), shown(*slider)));
}

TEST_F(PanelControls, SurviveHandlersThatRemoveThemOrThrow) {
    const auto remove = [this](const std::shared_ptr<Control>& control) {
        return [this, control] { panel->contentView().removeControl(control); };
    };
    const std::tuple<const char*, std::shared_ptr<Control>, std::function<void()>> cases[] = {
        {"edit x", field, [this] { QTest::keyClicks(shown(*field), "x"); }},
        {"slider 10.1", slider, [] { press(Qt::Key_Right); }},
        {"button", button, [] { press(Qt::Key_Space); }},
        {"activate 1", list, [] { press(Qt::Key_Return); }},
    };
    list->setSelectedRow(1);
    for (const auto& [line, control, use] : cases) {
        SCOPED_TRACE(line);
        onLine = [] { throw 1; };
        control->focus();
        use();
        EXPECT_EQ(taken().front(), line);
        EXPECT_FALSE(log.take().empty());
        onLine = remove(control);
        field->setText("");
        slider->setValue(10);
        taken();
        control->focus();
        use();
        EXPECT_EQ(taken(), std::vector<std::string>{line});
        EXPECT_FALSE(shown(*control));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        onLine = [] {};
        panel->contentView().addControl(control);
    }
    onLine = [this] { list->setRows({{"New"}}); };
    list->focus();
    list->setSelectedRow(0);
    press(Qt::Key_Down);
    EXPECT_THAT(taken(), ElementsAre("select 1"));
    EXPECT_FALSE(list->selectedRow());
}

TEST_F(PanelControls, AreReleasedWithThePanelEvenInAHandler) {
    const std::vector<std::weak_ptr<Control>> released{field, slider, button, box, list};
    const std::weak_ptr<MenuExtraView> releasedView = view;
    onLine = [this] { panel.reset(); };
    field->focus();
    field.reset();
    slider.reset();
    button.reset();
    box.reset();
    view.reset();
    list.reset();
    QTest::keyClick(QApplication::focusWidget(), Qt::Key_X);
    EXPECT_THAT(taken(), ElementsAre("edit x"));
    EXPECT_TRUE(widget) << "deleted later";
    for (const auto& control : released)
        EXPECT_TRUE(control.expired());
    EXPECT_TRUE(releasedView.expired());
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_FALSE(widget);
}

TEST_F(PanelControls, HaveANameARoleAndAnActionForScreenReaders) {
    slider->setValue(15);
    button->setTitle("Go");
    list->setSelectedRow(1);
    const auto interfaceOf = [this](const Control& control) {
        return QAccessible::queryAccessibleInterface(shown(control));
    };
    const auto label = [this](const std::string& text, const std::shared_ptr<Control>& named) {
        const auto made = std::make_shared<Label>(Rect{}, text);
        made->setNamedControl(named);
        panel->contentView().addControl(made);
        return made;
    };
    const auto name = label("R & D", field);
    label("Volume", slider);
    label("People", list);
    label("Load", box);
    disabled->setAccessibilityLabel("Off");
    const std::tuple<std::shared_ptr<Control>, const char*, QAccessible::Role, const char*>
        cases[] = {{field, "R & D", QAccessible::EditableText, "old"},
                   {slider, "Volume", QAccessible::Slider, "15"},
                   {button, "Go", QAccessible::Button, ""},
                   {disabled, "Off", QAccessible::Button, ""},
                   {box, "Load", QAccessible::Canvas, "3"},
                   {list, "People", QAccessible::List, "People"},
                   {name, "R & D", QAccessible::StaticText, ""}};
    for (const auto& [control, text, role, value] : cases) {
        SCOPED_TRACE(text);
        EXPECT_EQ(interfaceOf(*control)->text(QAccessible::Name), text);
        EXPECT_EQ(interfaceOf(*control)->role(), role);
        EXPECT_EQ(interfaceOf(*control)->text(QAccessible::Value), value);
    }
    interfaceOf(*button)->actionInterface()->doAction(QAccessibleActionInterface::pressAction());
    interfaceOf(*slider)->valueInterface()->setCurrentValue(12.5);
    interfaceOf(*field)->editableTextInterface()->insertText(0, "x");
    QAccessibleInterface* const row = interfaceOf(*list)->child(0);
    EXPECT_EQ(row->text(QAccessible::Name), "Ada, 1815");
    row->actionInterface()->doAction(row->actionInterface()->actionNames().value(0));
    EXPECT_THAT(taken(), ElementsAre("slider 12.5", "edit xold", "select none", "select 0"));
    EXPECT_TRUE(QTest::qWaitFor([&] { return !lines.empty(); })) << "the button is clicked";
    name->setText("Name");
    EXPECT_EQ(interfaceOf(*field)->text(QAccessible::Name), "Name");
}

} // namespace
