#include "platform/qt/QtMenu.h"

#include "platform/qt/HandledEvent.h"
#include "platform/qt/InputEvents.h"
#include "platform/qt/MenuAccessible.h"
#include "platform/qt/MenuShortcut.h"
#include "platform/qt/MenuStyle.h"
#include "platform/qt/Modifiers.h"
#include "platform/qt/ToolTip.h"
#include "platform/qt/ViewWidget.h"
#include "platform/qt/X11Compositing.h"
#include "platform/runtime/Guard.h"

#include <QGuiApplication>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPointer>
#include <QScreen>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace platform::qt {
namespace {

// In points.
constexpr int kShadowWidth = 18;
constexpr int kBorderWidth = 1;
constexpr int kGap = 4; // between a panel with a shadow and the item above or the screen's edges
constexpr int kSubmenuOverlap = 3; // of the panels of a menu and its submenu

/// Returns the flag of a modifier key, or 0 for another key.
std::uint32_t modifierOf(const QKeyEvent& event) {
    switch (event.key()) {
    case Qt::Key_Shift:
        return kShiftKeyMask;
    case Qt::Key_Control:
        return kControlKeyMask;
    case Qt::Key_Alt:
        return kOptionKeyMask;
    default:
        return 0;
    }
}

/// Returns the modifier flags after a key event. Its own modifiers may be those before it.
std::uint32_t modifiersAfter(const QKeyEvent& event) {
    const std::uint32_t flags = modifierFlags(event.modifiers());
    const std::uint32_t flag = modifierOf(event);
    return event.type() == QEvent::KeyPress ? flags | flag : flags & ~flag;
}

} // namespace

QtMenu::QtMenu(std::shared_ptr<Menu> menu, std::string owner, QWidget* parent)
    : QMenu(parent), menu_(std::move(menu)), owner_(std::move(owner)),
      hasShadow_(parentMenu() ? parentMenu()->hasShadow_ : windowsAreTranslucent()) {
    installMenuAccessibility();
    setAttribute(Qt::WA_TranslucentBackground, hasShadow_);
    setStyle(menuStyle());
    // Presses outside of the menu are left to the mouse handler.
    setAttribute(Qt::WA_NoMouseReplay);
    menu_->addDisplay(*this);
    if (&root() != this) {
        connect(this, &QMenu::aboutToShow, this, &QtMenu::refreshAll);
        return;
    }
    modifiers_ = modifierFlags(QGuiApplication::queryKeyboardModifiers());
    refreshAll();
}

QtMenu::~QtMenu() {
    menu_->removeDisplay(*this);
    for (const auto& item : observed_)
        item->removeDisplay(*this);
    if (highlighted_)
        highlighted_->setHighlighted(false);
}

QtMenu* QtMenu::parentMenu() const {
    return qobject_cast<QtMenu*>(parentWidget());
}

QtMenu& QtMenu::root() {
    QtMenu* const parent = parentMenu();
    return parent ? parent->root() : *this;
}

/// Whether this widget or one of its parent menus shows @p menu.
bool QtMenu::isNestedIn(const Menu& menu) const {
    return menu_.get() == &menu || (parentMenu() && parentMenu()->isNestedIn(menu));
}

QtMenu::Row* QtMenu::rowOf(const QAction* action) const {
    const auto found = std::find_if(rows_.begin(), rows_.end(),
                                    [&](const auto& row) { return row->action == action; });
    return action && found != rows_.end() ? found->get() : nullptr;
}

const MenuItem* QtMenu::itemOf(const QAction& action) const {
    const Row* const row = rowOf(&action);
    return row ? row->shown.get() : nullptr;
}

const ViewWidget* QtMenu::viewOf(const QAction& action) const {
    const Row* const row = rowOf(&action);
    return row ? row->viewWidget : nullptr;
}

void QtMenu::dismiss() {
    root().close();
}

void QtMenu::setOutsideMouseHandler(MouseHandler handler) {
    mouseHandler_ = std::move(handler);
}

int QtMenu::panelMargin() const {
    return hasShadow_ ? kShadowWidth : kBorderWidth;
}

QRect QtMenu::panelRect() const {
    const int margin = hasShadow_ ? kShadowWidth : 0;
    return rect().adjusted(margin, margin, -margin, -margin);
}

void QtMenu::popupBelow(const QRect& item) {
    const int width = sizeHint().width() - 2 * panelRect().left();
    corner_ = QPoint(isRightToLeft() ? item.right() + 1 - width : item.left(),
                     item.bottom() + 1 + (hasShadow_ ? kGap : 0));
    popup(*corner_);
}

/// Corrects the position that QMenu has chosen, which takes the shadow for a part of the menu.
void QtMenu::place() {
    const QtMenu* const parent = parentMenu();
    if (corner_)
        placeAt(*corner_);
    else if (parent && parent->isVisible())
        placeBesideParent(*parent);
}

void QtMenu::placeAt(QPoint corner) {
    const QScreen* const target = QGuiApplication::screenAt(corner);
    const int gap = hasShadow_ ? kGap : 0;
    const QRect space =
        (target ? target : screen())->availableGeometry().adjusted(gap, gap, -gap, -gap);
    QRect panel(corner, panelRect().size());
    panel.moveRight(std::min(panel.right(), space.right()));
    panel.moveLeft(std::max(panel.left(), space.left()));
    panel.moveBottom(std::min(panel.bottom(), space.bottom()));
    panel.moveTop(std::max(panel.top(), std::min(space.top(), corner.y())));
    move(panel.topLeft() - panelRect().topLeft());
}

/// Moves a submenu beside the row that opens it: after the row in the direction of the layout, or
/// before it if there is not enough space.
void QtMenu::placeBesideParent(const QtMenu& parent) {
    const int margin = panelRect().left();
    const QRect space = screen()->availableGeometry();
    const QRect panel = parent.panelRect().translated(parent.pos());
    const int left = panel.left() + kSubmenuOverlap - width() + margin;
    const int right = panel.right() + 1 - kSubmenuOverlap - margin;
    const bool fitsLeft = left + margin >= space.left();
    const bool fitsRight = right + width() - margin <= space.right() + 1;
    const bool opensRight = isRightToLeft() ? !fitsLeft && fitsRight : fitsRight || !fitsLeft;
    move(opensRight ? right : left, y());
}

void QtMenu::showEvent(QShowEvent* event) {
    place();
    QMenu::showEvent(event);
}

bool QtMenu::handles(const QMouseEvent& event) {
    const MouseHandler& handler = root().mouseHandler_;
    return !panelRect().contains(event.pos()) && handler && handler(event);
}

/// Handles the mouse in the shadow as if the shadow were not a part of the menu. Returns false
/// elsewhere.
bool QtMenu::handlesShadow(const QMouseEvent& event) {
    if (panelRect().contains(event.pos()) || !rect().contains(event.pos()))
        return false;
    QtMenu* parent = parentMenu();
    const auto isOver = [&](const QtMenu& menu) {
        return menu.panelRect().contains(menu.mapFromGlobal(event.globalPosition()).toPoint());
    };
    while (parent && !isOver(*parent))
        parent = parent->parentMenu();
    if (parent)
        forward(event, *parent);
    else if (event.type() == QEvent::MouseButtonPress)
        root().close();
    return true;
}

void QtMenu::mousePressEvent(QMouseEvent* event) {
    if (!handles(*event) && !handlesShadow(*event))
        QMenu::mousePressEvent(event);
}

void QtMenu::mouseReleaseEvent(QMouseEvent* event) {
    if (!handlesShadow(*event))
        QMenu::mouseReleaseEvent(event);
}

void QtMenu::mouseMoveEvent(QMouseEvent* event) {
    for (const auto& row : rows_) {
        if (row->viewWidget && row->viewWidget->isPressed())
            return forward(*event, *row->viewWidget); // Qt sends the one that leaves the menu here
        if (row->viewWidget)
            row->viewWidget->sendExit();
    }
    if (!handles(*event) && !handlesShadow(*event))
        QMenu::mouseMoveEvent(event);
}

void QtMenu::forward(const QMouseEvent& event, QWidget& widget) {
    QMouseEvent forwarded(event.type(), widget.mapFromGlobal(event.globalPosition()),
                          event.globalPosition(), event.button(), event.buttons(),
                          event.modifiers());
    QCoreApplication::sendEvent(&widget, &forwarded);
}

/// Highlights the row of a view while the pointer is over it.
bool QtMenu::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::MouseMove) {
        const auto& move = static_cast<const QMouseEvent&>(*event);
        const auto& widget = static_cast<const QWidget&>(*watched);
        if (!widget.rect().contains(move.position().toPoint()))
            return false;
        const QPointF position = widget.mapTo(this, move.position());
        // Without buttons, because the release is for the view.
        QMouseEvent hover(QEvent::MouseMove, position, move.globalPosition(), Qt::NoButton, {},
                          move.modifiers());
        QMenu::mouseMoveEvent(&hover);
        root().setModifiers(modifierFlags(move.modifiers()));
        updateHighlight();
    }
    return QMenu::eventFilter(watched, event);
}

void QtMenu::keyPressEvent(QKeyEvent* event) {
    if (modifierOf(*event) != 0)
        return; // QMenu would lose the highlighted row
    if (!activeAction() && sendToFirstView(*event))
        return;
    const Row* const row = rowOf(activeAction());
    if (row && row->viewWidget && (row->viewWidget->sendKey(*event) || swallows(*row, *event)))
        return;
    if (!event->isAutoRepeat() && performShortcut(*event))
        return;
    const bool opensSubmenu = activeAction() && activeAction()->menu();
    const bool closesSubmenu = &root() != this;
    const int direction = event->key() == Qt::Key_Right ? 1 : event->key() == Qt::Key_Left ? -1 : 0;
    const bool isForward = direction == (isRightToLeft() ? -1 : 1);
    if (direction != 0 && !(isForward ? opensSubmenu : closesSubmenu))
        emit root().neighbourRequested(direction);
    else
        QMenu::keyPressEvent(event);
}

/// Highlights a view at the top of the menu if it handles a key.
bool QtMenu::sendToFirstView(const QKeyEvent& event) {
    ViewWidget* const view = rows_.empty() ? nullptr : rows_.front()->viewWidget;
    QAction* const action = view ? rows_.front()->action : nullptr;
    const QPointer<QtMenu> self = this;
    if (!view || !view->sendKey(event))
        return false;
    if (self && actions().contains(action))
        setActiveAction(action);
    return true;
}

/// Whether a key does nothing on the row of a view: Return or Space without an action.
bool QtMenu::swallows(const Row& row, const QKeyEvent& event) {
    const int key = event.key();
    return !row.shown->hasAction() && !row.submenu &&
           (key == Qt::Key_Return || key == Qt::Key_Enter || key == Qt::Key_Space);
}

bool QtMenu::performShortcut(const QKeyEvent& event) {
    std::shared_ptr<MenuItem> item;
    runGuarded(owner_, [&] { item = itemWithShortcut(*root().menu_, inputEvent(event)); });
    if (!item)
        return false;
    const std::string owner = owner_;
    const std::uint32_t modifiers = modifierFlags(event.modifiers());
    root().close();
    perform(owner, item, modifiers);
    return true;
}

/// The action may destroy the menu.
void QtMenu::perform(std::string owner, std::shared_ptr<MenuItem> item, std::uint32_t modifiers) {
    const HandledEvent scope({.modifierFlags = modifiers});
    runGuarded(owner, [&] { item->perform(); });
}

bool QtMenu::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::KeyRelease:
        root().setModifiers(modifiersAfter(static_cast<const QKeyEvent&>(*event)));
        break;
    case QEvent::MouseMove:
        root().setModifiers(modifierFlags(static_cast<const QMouseEvent&>(*event).modifiers()));
        break;
    case QEvent::ToolTip:
        showToolTip(static_cast<const QHelpEvent&>(*event));
        return true;
    default:
        break;
    }
    const QPointer<QtMenu> self = this;
    const bool handled = QMenu::event(event);
    if (!self)
        return handled;
    if (event->type() == QEvent::KeyPress)
        scrollToActiveRow();
    updateHighlight();
    return handled;
}

/// QMenu selects a row at the other end of a menu that scrolls without showing it.
void QtMenu::scrollToActiveRow() {
    QAction* const active = isVisible() ? activeAction() : nullptr;
    if (active && !panelRect().contains(actionGeometry(active)))
        setActiveAction(active);
}

/// Shows the tooltip of the row at a position: its own, or its title if that is cut off.
void QtMenu::showToolTip(const QHelpEvent& event) {
    const Row* const row = rowOf(actionAt(event.pos()));
    if (!row)
        return QToolTip::hideText();
    std::string text = row->shown->toolTip();
    if (text.empty() && !row->view &&
        isTitleCut(*row->shown, columns_, font(), actionGeometry(row->action).width()))
        text = row->shown->title();
    platform::qt::showToolTip(event.globalPos(), text, *this, actionGeometry(row->action));
}

void QtMenu::setModifiers(std::uint32_t flags) {
    if (std::exchange(modifiers_, flags) == flags)
        return;
    for (QtMenu* menu : findChildren<QtMenu*>())
        menu->showAlternates();
    showAlternates();
}

void QtMenu::showAlternates() {
    refreshRows(
        [this](const Row& row) { return row.group.size() > 1 && itemFor(row.group) != row.shown; });
    updateHighlight();
}

/// Tells the items, and their views, which one is highlighted.
void QtMenu::updateHighlight() {
    Row* const row = isVisible() ? rowOf(activeAction()) : nullptr;
    const auto item = row ? row->shown : nullptr;
    if (item == highlighted_)
        return;
    const auto before = std::exchange(highlighted_, item);
    runGuarded(owner_, [&] {
        if (before)
            before->setHighlighted(false);
        if (item)
            item->setHighlighted(true);
    });
    for (const auto& other : rows_)
        showHighlight(*other);
}

void QtMenu::showHighlight(const Row& row) {
    if (!row.viewWidget)
        return;
    const bool highlighted =
        row.shown == highlighted_ && row.shown->viewStyle() == MenuItem::ViewStyle::Highlighted;
    row.viewWidget->setHighlighted(highlighted);
    row.viewWidget->setForegroundRole(highlighted ? QPalette::HighlightedText : QPalette::Text);
}

void QtMenu::initStyleOption(QStyleOptionMenuItem* option, const QAction* action) const {
    QMenu::initStyleOption(option, action);
    styled_ = rowOf(action);
}

std::optional<QSize> QtMenu::styledRowSize() const {
    if (!styled_)
        return std::nullopt;
    if (styled_->viewWidget)
        return styled_->viewWidget->sizeHint();
    QSize size;
    for (const auto& item : styled_->group)
        size = size.expandedTo(menuRowSize(*item, columns_, font()));
    return size;
}

bool QtMenu::paintStyledRow(QPainter& painter, const QStyleOptionMenuItem& option) const {
    if (!styled_)
        return false;
    paintMenuRow(painter, *styled_->shown, columns_, option, font());
    return true;
}

} // namespace platform::qt
