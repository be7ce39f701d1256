#include "platform/qt/QtMenu.h"

#include "platform/runtime/Guard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QProxyStyle>

#include <utility>

namespace platform::qt {
namespace {

/// An ampersand is a letter in a title, not a mark for the keyboard.
QString actionText(const std::string& title) {
    return QString::fromStdString(title).replace('&', "&&").replace('\n', ' ').replace('\t', ' ');
}

void showState(QAction& action, const MenuItem& item) {
    action.setText(actionText(item.title()));
    action.setCheckable(item.state() != MenuItem::State::Off);
    action.setChecked(item.state() != MenuItem::State::Off);
}

/// A menu that is higher than the screen scrolls; the desktop's style may begin further columns,
/// off the screen in the end.
class ScrollingMenus final : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_Menu_Scrollable ? 1 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

QStyle* menuStyle() {
    static QPointer<ScrollingMenus> style;
    if (!style) {
        style = new ScrollingMenus;
        style->setParent(qApp);
    }
    return style;
}

} // namespace

QtMenu::QtMenu(const Menu& menu, std::string owner, QWidget* parent)
    : QMenu(parent), menu_(&menu), owner_(std::move(owner)) {
    setStyle(menuStyle());
    // Whoever shows the menu says what a press beside it means.
    setAttribute(Qt::WA_NoMouseReplay);
    for (const auto& item : menu.items())
        addItem(item);
}

QtMenu::~QtMenu() {
    for (const auto& item : items_)
        item->setChangeHandler({});
}

void QtMenu::addItem(const std::shared_ptr<MenuItem>& item) {
    if (item->isSeparatorItem()) {
        addSeparator();
        return;
    }
    items_.push_back(item);
    QAction* action = nullptr;
    const bool opensItself = item->submenu() && shows(*item->submenu());
    if (item->submenu() && !opensItself) {
        auto* submenu = new QtMenu(*item->submenu(), owner_, this);
        connect(submenu, &QtMenu::neighbourWanted, this, &QtMenu::neighbourWanted);
        submenus_.push_back(submenu);
        action = addMenu(submenu);
    } else {
        action = addAction(QString());
        connect(action, &QAction::triggered, this,
                [owner = owner_, item] { runGuarded(owner, [&] { item->perform(); }); });
    }
    showState(*action, *item);
    bool enabled = false;
    runGuarded(owner_, [&] { enabled = !opensItself && item->isEnabled(); });
    action->setEnabled(enabled);
    item->setChangeHandler([action, raw = item.get()] { showState(*action, *raw); });
}

/// Whether this or a menu that it is a submenu of was built from @p menu.
bool QtMenu::shows(const Menu& menu) const {
    const auto* above = qobject_cast<const QtMenu*>(parentWidget());
    return menu_ == &menu || (above && above->shows(menu));
}

void QtMenu::setMouseHandler(MouseHandler handler) {
    for (QtMenu* submenu : submenus_)
        submenu->setMouseHandler(handler);
    mouseHandler_ = std::move(handler);
}

bool QtMenu::isHandled(const QMouseEvent& event) const {
    return !rect().contains(event.pos()) && mouseHandler_ && mouseHandler_(event);
}

void QtMenu::mousePressEvent(QMouseEvent* event) {
    if (!isHandled(*event))
        QMenu::mousePressEvent(event);
}

void QtMenu::mouseMoveEvent(QMouseEvent* event) {
    if (!isHandled(*event))
        QMenu::mouseMoveEvent(event);
}

void QtMenu::keyPressEvent(QKeyEvent* event) {
    const bool opensSubmenu = activeAction() && activeAction()->menu();
    const bool closesSubmenu = qobject_cast<QtMenu*>(parentWidget()) != nullptr;
    if (event->key() == Qt::Key_Right && !opensSubmenu)
        emit neighbourWanted(1);
    else if (event->key() == Qt::Key_Left && !closesSubmenu)
        emit neighbourWanted(-1);
    else
        QMenu::keyPressEvent(event);
}

} // namespace platform::qt
