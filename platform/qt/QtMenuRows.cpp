#include "platform/qt/QtMenu.h"

#include "platform/qt/MenuAccessible.h"
#include "platform/qt/Modifiers.h"
#include "platform/qt/ViewWidget.h"
#include "platform/runtime/Guard.h"

#include <QActionEvent>
#include <QGuiApplication>
#include <QScreen>
#include <QWidgetAction>

#include <algorithm>
#include <utility>

// How the rows of a menu follow its items.
namespace platform::qt {
namespace {

/// Keeps a menu from being resized for each of several changes, for the object's lifetime.
class FrozenSize : NonCopyable {
  public:
    explicit FrozenSize(QWidget& widget) : widget_(widget) {
        if (widget.isVisible())
            widget_.setFixedSize(widget_.size());
    }
    ~FrozenSize() {
        widget_.setMinimumSize(0, 0);
        widget_.setMaximumSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX);
    }

  private:
    QWidget& widget_;
};

} // namespace

void QtMenu::itemsChanged() {
    scheduleSync();
}

void QtMenu::itemChanged(const MenuItem& item) {
    changed_.insert(&item);
    scheduleSync();
}

void QtMenu::scheduleSync() {
    if (!std::exchange(needsSync_, true))
        QMetaObject::invokeMethod(
            this, [this] { sync(); }, Qt::QueuedConnection);
}

void QtMenu::refreshAll() {
    for (const auto& item : menu_->items())
        changed_.insert(item.get());
    sync();
}

void QtMenu::sync() {
    if (isRefreshing_)
        return; // called by an event loop that a target runs; needsSync_ remains set
    needsSync_ = false;
    const auto changed = std::exchange(changed_, {});
    observeItems();
    columns_ = menuColumns(menu_->items(), font());
    {
        const FrozenSize frozen(*this);
        arrangeRows();
        refreshRows([&](const Row& row) {
            const auto isChanged = [&](const auto& item) { return changed.contains(item.get()); };
            return !row.shown || std::any_of(row.group.begin(), row.group.end(), isChanged);
        });
    }
    relayout();
}

/// Refreshes the rows that @p needsRefresh chooses.
void QtMenu::refreshRows(const std::function<bool(const Row& row)>& needsRefresh) {
    if (std::exchange(isRefreshing_, true))
        return;
    for (const auto& row : rows_)
        if (needsRefresh(*row))
            refresh(*row);
    isRefreshing_ = false;
    if (std::exchange(needsSync_, false))
        scheduleSync();
}

void QtMenu::observeItems() {
    for (const auto& item : observed_)
        item->removeDisplay(*this);
    observed_ = menu_->items();
    for (const auto& item : observed_)
        item->addDisplay(*this);
}

std::vector<QtMenu::Group> QtMenu::groups(const Menu& menu) {
    std::vector<Group> groups;
    const auto canAlternate = [](const MenuItem& item) {
        return !item.isSeparatorItem() && !item.isSectionHeader() && !item.view();
    };
    for (const auto& item : menu.items()) {
        if (item->isHidden())
            continue;
        if (item->alternateModifiers() != 0 && !groups.empty() && canAlternate(*item) &&
            canAlternate(*groups.back().front()))
            groups.back().push_back(item);
        else
            groups.push_back({item});
    }
    return groups;
}

/// Makes one row for each group of the menu. Keeps those whose item is still there.
void QtMenu::arrangeRows() {
    Rows old = std::exchange(rows_, {});
    for (Group& group : groups(*menu_)) {
        const auto kept = std::find_if(old.begin(), old.end(), [&](const auto& row) {
            return row && row->group.front() == group.front() && row->view == group.front()->view();
        });
        auto row = kept == old.end() ? makeRow(group.front()) : std::move(*kept);
        if (row->group != group)
            row->shown = nullptr;
        row->group = std::move(group);
        rows_.push_back(std::move(row));
    }
    for (const auto& row : old)
        if (row)
            retire(*row);
    QAction* const active = activeAction();
    for (qsizetype i = 0; const auto& row : rows_) {
        QAction* const before = actions().value(i++);
        if (before != row->action)
            insertAction(before, row->action);
    }
    if (active != activeAction() && rowOf(active))
        setActiveAction(active); // the row has moved
}

std::unique_ptr<QtMenu::Row> QtMenu::makeRow(const std::shared_ptr<MenuItem>& item) {
    auto row = std::make_unique<Row>();
    row->view = item->view();
    row->action = row->view ? makeViewAction(*row) : new QAction(this);
    row->action->setSeparator(item->isSeparatorItem());
    connect(row->action, &QAction::triggered, row->action, [this, action = row->action] {
        if (const Row* const chosen = rowOf(action))
            perform(owner_, chosen->shown, modifierFlags(QGuiApplication::keyboardModifiers()));
    });
    return row;
}

QAction* QtMenu::makeViewAction(Row& row) {
    auto* const action = new QWidgetAction(this);
    auto* const widget = new ViewWidget(row.view, owner_, this);
    action->setDefaultWidget(widget);
    widget->installEventFilter(this);
    connect(widget, &ViewWidget::viewResized, this, &QtMenu::scheduleSync);
    connect(widget, &ViewWidget::dismissRequested, this, &QtMenu::dismiss);
    row.viewWidget = widget;
    return action;
}

/// Removes a row. Its action or view may be running, so its widgets are destroyed later.
void QtMenu::retire(Row& row) {
    if (row.submenuWidget) {
        row.submenuWidget->hide();
        row.submenuWidget->deleteLater();
    }
    removeAction(row.action);
    row.action->deleteLater();
}

const std::shared_ptr<MenuItem>& QtMenu::itemFor(const Group& group) {
    const auto held = root().modifiers_;
    const auto found = std::find_if(group.begin() + 1, group.end(), [&](const auto& item) {
        return item->alternateModifiers() == held;
    });
    return found == group.end() ? group.front() : *found;
}

void QtMenu::refresh(Row& row) {
    row.shown = itemFor(row.group);
    const MenuItem& item = *row.shown;
    if (item.isSeparatorItem())
        return row.action->setEnabled(false);
    const bool isCyclic = item.submenu() && isNestedIn(*item.submenu());
    bool enabled = false;
    runGuarded(owner_, [&] { enabled = !isCyclic && item.isEnabled(); });
    row.action->setEnabled(enabled);
    // Never drawn; typing in the menu searches it.
    row.action->setText(accessibleText(item).replace('&', "&&"));
    showSubmenu(row, isCyclic ? nullptr : item.submenu());
    if (!row.viewWidget)
        return;
    const bool fills = item.viewStyle() != MenuItem::ViewStyle::Plain;
    row.viewWidget->setFollowsWidget(fills ? Qt::Orientations(Qt::Horizontal) : Qt::Orientations());
    showHighlight(row);
}

void QtMenu::showSubmenu(Row& row, const std::shared_ptr<Menu>& submenu) {
    if (row.submenu == submenu)
        return;
    if (row.submenuWidget) {
        row.submenuWidget->hide();
        row.submenuWidget->deleteLater();
    }
    row.submenu = submenu;
    row.submenuWidget = submenu ? new QtMenu(submenu, owner_, this) : nullptr;
    row.action->setMenu(row.submenuWidget);
}

/// Gives the menu the size that its rows need, and closes it if there are none.
void QtMenu::relayout() {
    if (rows_.empty()) {
        hide();
        return;
    }
    QActionEvent changed(QEvent::ActionChanged, rows_.front()->action);
    actionEvent(&changed);
    if (!isVisible() ||
        panelRect().translated(pos()).bottom() <= screen()->availableGeometry().bottom())
        return;
    popup(pos(), activeAction());
    place();
}

} // namespace platform::qt
