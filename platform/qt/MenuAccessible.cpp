#include "platform/qt/MenuAccessible.h"

#include "platform/qt/MenuShortcut.h"
#include "platform/qt/QtMenu.h"
#include "platform/qt/Strings.h"
#include "platform/qt/ViewWidget.h"

#include <QAccessibleWidget>
#include <QAction>
#include <QStringList>

namespace platform::qt {
namespace {

/// A row of a menu, whose object is the row's action.
class RowAccessible final : public QAccessibleObject, public QAccessibleActionInterface {
  public:
    explicit RowAccessible(QAction& action) : QAccessibleObject(&action) {}

    QAccessible::Role role() const override {
        const MenuItem* const item = shownItem();
        if (!item || item->isSeparatorItem())
            return QAccessible::Separator;
        return item->isSectionHeader() ? QAccessible::Heading : QAccessible::MenuItem;
    }
    QAccessible::State state() const override {
        QAccessible::State state;
        const MenuItem* const item = shownItem();
        state.disabled = !action() || !action()->isEnabled();
        state.invisible = !menu() || !menu()->isVisible();
        if (!item)
            return state;
        state.checkable = item->state() != MenuItem::State::Off;
        state.checked = item->state() == MenuItem::State::On;
        state.checkStateMixed = item->state() == MenuItem::State::Mixed;
        state.hasPopup = item->submenu() != nullptr;
        state.focusable = !state.disabled;
        state.focused = menu()->activeAction() == action();
        return state;
    }
    QString text(QAccessible::Text kind) const override {
        const MenuItem* const item = shownItem();
        if (!item)
            return {};
        const ViewWidget* const view = menu()->viewOf(*action());
        const AccessibleDescription own =
            view ? view->accessibleDescription() : AccessibleDescription{};
        const auto either = [](const std::string& text, const QString& other) {
            return text.empty() ? other : qString(text);
        };
        switch (kind) {
        case QAccessible::Name:
            return either(own.name, accessibleText(*item));
        case QAccessible::Value:
            return either(own.value, qString(item->trailingText()));
        case QAccessible::Description:
            return either(own.description, qString(item->toolTip()));
        case QAccessible::Accelerator:
            return item->shortcut() ? shortcutText(*item->shortcut()) : QString();
        default:
            return {};
        }
    }
    QRect rect() const override {
        if (!menu())
            return {};
        const QRect row = menu()->actionGeometry(action());
        return {menu()->mapToGlobal(row.topLeft()), row.size()};
    }

    QAccessibleInterface* parent() const override {
        return QAccessible::queryAccessibleInterface(menu());
    }
    int childCount() const override { return submenu() ? 1 : 0; }
    QAccessibleInterface* child(int) const override {
        return QAccessible::queryAccessibleInterface(submenu());
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return submenu() && child->object() == submenu() ? 0 : -1;
    }

    void* interface_cast(QAccessible::InterfaceType type) override {
        return type == QAccessible::ActionInterface ? static_cast<QAccessibleActionInterface*>(this)
                                                    : nullptr;
    }
    QStringList actionNames() const override {
        if (!action() || !action()->isEnabled())
            return {};
        return {submenu() ? showMenuAction() : pressAction()};
    }
    void doAction(const QString& name) override {
        if (name == showMenuAction() && submenu()) {
            menu()->setActiveAction(action());
        } else if (name == pressAction() && action() && !submenu()) {
            menu()->dismiss();
            action()->trigger();
        }
    }
    QStringList keyBindingsForAction(const QString&) const override { return {}; }

  private:
    QAction* action() const { return qobject_cast<QAction*>(object()); }
    QtMenu* menu() const { return action() ? qobject_cast<QtMenu*>(action()->parent()) : nullptr; }
    QMenu* submenu() const { return action() ? action()->menu<QMenu*>() : nullptr; }
    const MenuItem* shownItem() const { return menu() ? menu()->itemOf(*action()) : nullptr; }
};

class MenuAccessible final : public QAccessibleWidget {
  public:
    explicit MenuAccessible(QtMenu& menu) : QAccessibleWidget(&menu, QAccessible::PopupMenu) {}

    int childCount() const override { return static_cast<int>(widget()->actions().size()); }
    QAccessibleInterface* child(int index) const override {
        QAction* const action = widget()->actions().value(index);
        return action ? QAccessible::queryAccessibleInterface(action) : nullptr;
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        return static_cast<int>(
            widget()->actions().indexOf(qobject_cast<QAction*>(child->object())));
    }
    QAccessibleInterface* childAt(int x, int y) const override {
        const auto& menu = static_cast<const QtMenu&>(*widget());
        QAction* const action = menu.actionAt(menu.mapFromGlobal(QPoint(x, y)));
        return action ? QAccessible::queryAccessibleInterface(action) : nullptr;
    }
    QAccessibleInterface* focusChild() const override {
        QAction* const action = static_cast<const QtMenu&>(*widget()).activeAction();
        return action ? QAccessible::queryAccessibleInterface(action) : nullptr;
    }
};

QAccessibleInterface* createAccessible(const QString&, QObject* object) {
    if (auto* menu = qobject_cast<QtMenu*>(object))
        return new MenuAccessible(*menu);
    auto* const action = qobject_cast<QAction*>(object);
    return action && qobject_cast<QtMenu*>(action->parent()) ? new RowAccessible(*action) : nullptr;
}

} // namespace

QString accessibleText(const MenuItem& item) {
    QStringList parts;
    for (const std::string* text : {&item.title(), &item.trailingText(), &item.subtitle()})
        if (!text->empty())
            parts.append(qString(*text));
    return parts.join(", ");
}

void installMenuAccessibility() {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(createAccessible);
        return true;
    }();
}

} // namespace platform::qt
