#include "platform/qt/QtMenu.h"

#include "platform/qt/Strings.h"
#include "platform/runtime/Guard.h"

#include <QApplication>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QProxyStyle>

#include <utility>

namespace platform::qt {
namespace {

/// Escapes ampersands, which would mark a mnemonic, and replaces line ends and tabs by blanks.
QString actionText(const std::string& title) {
    return qString(title).replace('&', "&&").replace('\n', ' ').replace('\t', ' ');
}

void showState(QAction& action, const MenuItem& item) {
    action.setText(actionText(item.title()));
    action.setCheckable(item.state() != MenuItem::State::Off);
    action.setChecked(item.state() != MenuItem::State::Off);
}

/// Makes menus that are higher than the screen scroll. Some styles add columns instead, which may
/// extend beyond the screen.
class ScrollingMenuStyle final : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        return hint == SH_Menu_Scrollable ? 1 : QProxyStyle::styleHint(hint, option, widget, data);
    }
};

QStyle* menuStyle() {
    static QPointer<ScrollingMenuStyle> style;
    if (!style) {
        style = new ScrollingMenuStyle;
        style->setParent(qApp);
    }
    return style;
}

} // namespace

QtMenu::QtMenu(const Menu& menu, std::string owner, QWidget* parent)
    : QMenu(parent), menu_(&menu), owner_(std::move(owner)) {
    setStyle(menuStyle());
    // Presses outside of the menu are left to the mouse handler.
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
    const bool isCyclic = item->submenu() && isNestedIn(*item->submenu());
    if (item->submenu() && !isCyclic) {
        auto* submenu = new QtMenu(*item->submenu(), owner_, this);
        connect(submenu, &QtMenu::neighbourRequested, this, &QtMenu::neighbourRequested);
        submenus_.push_back(submenu);
        action = addMenu(submenu);
    } else {
        action = addAction(QString());
        connect(action, &QAction::triggered, this,
                [owner = owner_, item] { runGuarded(owner, [&] { item->perform(); }); });
    }
    showState(*action, *item);
    bool enabled = false;
    runGuarded(owner_, [&] { enabled = !isCyclic && item->isEnabled(); });
    action->setEnabled(enabled);
    item->setChangeHandler([action, raw = item.get()] { showState(*action, *raw); });
}

/// Whether this widget or one of its parent menus shows @p menu.
bool QtMenu::isNestedIn(const Menu& menu) const {
    const auto* parent = qobject_cast<const QtMenu*>(parentWidget());
    return menu_ == &menu || (parent && parent->isNestedIn(menu));
}

void QtMenu::setOutsideMouseHandler(MouseHandler handler) {
    for (QtMenu* submenu : submenus_)
        submenu->setOutsideMouseHandler(handler);
    mouseHandler_ = std::move(handler);
}

bool QtMenu::handles(const QMouseEvent& event) const {
    return !rect().contains(event.pos()) && mouseHandler_ && mouseHandler_(event);
}

void QtMenu::mousePressEvent(QMouseEvent* event) {
    if (!handles(*event))
        QMenu::mousePressEvent(event);
}

void QtMenu::mouseMoveEvent(QMouseEvent* event) {
    if (!handles(*event))
        QMenu::mouseMoveEvent(event);
}

void QtMenu::keyPressEvent(QKeyEvent* event) {
    const bool opensSubmenu = activeAction() && activeAction()->menu();
    const bool closesSubmenu = qobject_cast<QtMenu*>(parentWidget()) != nullptr;
    if (event->key() == Qt::Key_Right && !opensSubmenu)
        emit neighbourRequested(1);
    else if (event->key() == Qt::Key_Left && !closesSubmenu)
        emit neighbourRequested(-1);
    else
        QMenu::keyPressEvent(event);
}

} // namespace platform::qt
