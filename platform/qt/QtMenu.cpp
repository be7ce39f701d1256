#include "platform/qt/QtMenu.h"

#include "platform/Guard.h"

#include <QKeyEvent>
#include <QMouseEvent>

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

} // namespace

QtMenu::QtMenu(const Menu& menu, std::string owner, QWidget* parent)
    : QMenu(parent), owner_(std::move(owner)) {
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
    if (item->submenu()) {
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
    runGuarded(owner_, [&] { enabled = item->isEnabled(); });
    action->setEnabled(enabled);
    item->setChangeHandler([action, raw = item.get()] { showState(*action, *raw); });
}

void QtMenu::setPressHandler(PressHandler handler) {
    for (QtMenu* submenu : submenus_)
        submenu->setPressHandler(handler);
    pressHandler_ = std::move(handler);
}

void QtMenu::mousePressEvent(QMouseEvent* event) {
    if (rect().contains(event->pos()) || !pressHandler_ || !pressHandler_(*event))
        QMenu::mousePressEvent(event);
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
