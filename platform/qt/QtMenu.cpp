#include "platform/qt/QtMenu.h"

#include "platform/Guard.h"

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

} // namespace platform::qt
