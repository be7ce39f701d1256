#include "platform/qt/ViewWidget.h"

#include "platform/qt/HandledEvent.h"
#include "platform/qt/MenuRow.h"
#include "platform/qt/QtGraphics.h"
#include "platform/qt/Strings.h"
#include "platform/qt/ToolTip.h"
#include "platform/runtime/Guard.h"

#include <QAccessibleWidget>
#include <QDropEvent>
#include <QHelpEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>
#include <QToolTip>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <utility>

namespace platform::qt {
namespace {

constexpr double kMaximumSide = 4096; // points

/// Limits a size that a view may set to anything.
QSizeF drawableSize(Size size) {
    const auto side = [](double length) { return length > 0 ? std::min(length, kMaximumSide) : 0; };
    return {side(size.width), side(size.height)};
}

class ViewAccessible final : public QAccessibleWidget {
  public:
    explicit ViewAccessible(ViewWidget& widget)
        : QAccessibleWidget(&widget, QAccessible::Canvas), widget_(widget) {}

    QString text(QAccessible::Text kind) const override {
        const std::string own = textOf(kind);
        return own.empty() ? QAccessibleWidget::text(kind) : qString(own);
    }

  private:
    std::string textOf(QAccessible::Text kind) const {
        const AccessibleDescription texts = widget_.accessibleDescription();
        switch (kind) {
        case QAccessible::Name:
            return texts.name;
        case QAccessible::Value:
            return texts.value;
        case QAccessible::Description:
            return texts.description;
        default:
            return {};
        }
    }

    ViewWidget& widget_;
};

QAccessibleInterface* createAccessible(const QString&, QObject* object) {
    auto* widget = qobject_cast<ViewWidget*>(object);
    return widget ? new ViewAccessible(*widget) : nullptr;
}

} // namespace

ViewWidget::ViewWidget(std::shared_ptr<MenuExtraView> view, std::string owner, QWidget* parent)
    : QWidget(parent), view_(std::move(view)), owner_(std::move(owner)),
      requestedSize_(view_->frame().size) {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(createAccessible);
        return true;
    }();
    view_->setContainer(this);
    setMouseTracking(true);
    setAcceptDrops(true);
    resize(sizeHint());
}

ViewWidget::~ViewWidget() {
    detach();
}

void ViewWidget::detach() {
    const auto view = std::exchange(view_, nullptr);
    if (view && view->container() == this)
        view->setContainer(nullptr);
}

void ViewWidget::setFollowsWidget(Qt::Orientations dimensions) {
    following_ = dimensions;
    followWidget();
}

QSize ViewWidget::sizeHint() const {
    const QSizeF size = drawableSize(requestedSize_);
    return {static_cast<int>(std::ceil(size.width())), static_cast<int>(std::ceil(size.height()))};
}

/// Runs code of the view, which may remove the view and delete this widget later. Returns false
/// after an exception.
bool ViewWidget::callView(const std::function<void(MenuExtraView& view)>& code) const {
    const std::shared_ptr<MenuExtraView> view = view_;
    return view && runGuarded(owner_, [&] { code(*view); });
}

void ViewWidget::viewNeedsDisplay(MenuExtraView&) {
    update();
}

void ViewWidget::viewSizeChanged(MenuExtraView&) {
    if (isFollowing_)
        return;
    requestedSize_ = view_->frame().size;
    updateGeometry();
    update();
    emit viewResized();
}

void ViewWidget::dismiss() {
    emit dismissRequested();
}

void ViewWidget::setHighlighted(bool highlighted) {
    highlighted_ = highlighted;
    update();
}

void ViewWidget::resizeEvent(QResizeEvent*) {
    followWidget();
}

void ViewWidget::followWidget() {
    if (!view_)
        return;
    Size size = view_->frame().size;
    if (following_ & Qt::Horizontal)
        size.width = width();
    if (following_ & Qt::Vertical)
        size.height = height();
    if (size == view_->frame().size)
        return;
    isFollowing_ = true;
    view_->setFrameSize(size);
    isFollowing_ = false;
    update();
}

void ViewWidget::paintEvent(QPaintEvent*) {
    auto* const target = dynamic_cast<QtGraphics*>(&graphics());
    if (!view_)
        return;
    const QSizeF points = drawableSize(view_->frame().size);
    if (!target || points.isEmpty())
        return;
    const double scale = devicePixelRatioF();
    QImage layer(static_cast<int>(std::ceil(points.width() * scale)),
                 static_cast<int>(std::ceil(points.height() * scale)),
                 QImage::Format_ARGB32_Premultiplied);
    layer.fill(Qt::transparent);
    callView([&](MenuExtraView& view) {
        const ScopedContext context(*target, layer, points, scale,
                                    palette().color(foregroundRole()), font());
        view.drawRect({{}, {points.width(), points.height()}});
    });
    layer.setDevicePixelRatio(scale);
    QPainter painter(this);
    if (highlighted_)
        paintMenuHighlight(painter, rect(), palette());
    painter.drawImage(0, 0, layer);
    if (view_) // its code may have removed it
        view_->didDisplay();
    announceChanges();
}

/// What the view shows has changed, so its texts for screen readers may have changed too.
void ViewWidget::announceChanges() {
    if (!QAccessible::isActive())
        return;
    const AccessibleDescription now = accessibleDescription();
    const auto before = std::exchange(announced_, now);
    for (const auto& [changed, event] :
         {std::pair(now.name != before.name, QAccessible::NameChanged),
          std::pair(now.value != before.value, QAccessible::ValueChanged),
          std::pair(now.description != before.description, QAccessible::DescriptionChanged)}) {
        QAccessibleEvent announcement(this, event);
        if (changed)
            QAccessible::updateAccessibility(&announcement);
    }
}

AccessibleDescription ViewWidget::accessibleDescription() const {
    AccessibleDescription texts;
    callView([&](const MenuExtraView& view) { texts = view.accessibleDescription(); });
    return texts;
}

Point ViewWidget::location(QPointF position) const {
    const Size size = view_ ? view_->frame().size : Size{};
    return {position.x(), drawableSize(size).height() - position.y()};
}

void ViewWidget::sendMouse(const QMouseEvent& event, Handler handler, std::int32_t clickCount) {
    Event input = inputEvent(event, clickCount);
    input.location = location(event.position());
    const HandledEvent scope(input);
    callView([&](MenuExtraView& view) { (view.*handler)(input); });
}

void ViewWidget::mousePressEvent(QMouseEvent* event) {
    hasPointer_ = true;
    isPressed_ = true;
    clickCount_ = clicks_.count(*event);
    sendMouse(*event, &MenuExtraView::mouseDown, clickCount_);
}

void ViewWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    mousePressEvent(event);
}

void ViewWidget::mouseMoveEvent(QMouseEvent* event) {
    hasPointer_ = true;
    const bool isDragged = event->buttons() != Qt::NoButton;
    sendMouse(*event, isDragged ? &MenuExtraView::mouseDragged : &MenuExtraView::mouseMoved,
              isDragged ? clickCount_ : 0);
}

void ViewWidget::mouseReleaseEvent(QMouseEvent* event) {
    const QPointer<ViewWidget> self = this;
    sendMouse(*event, &MenuExtraView::mouseUp, clickCount_);
    if (!self || event->buttons() != Qt::NoButton)
        return;
    isPressed_ = false;
    if (!rect().contains(event->position().toPoint()))
        sendExit();
}

void ViewWidget::sendExit() {
    if (!isPressed_ && std::exchange(hasPointer_, false))
        callView([](MenuExtraView& view) { view.mouseExited(); });
}

void ViewWidget::wheelEvent(QWheelEvent* event) {
    WheelEvent input = inputEvent(*event);
    input.location = location(event->position());
    const HandledEvent scope({.modifierFlags = input.modifierFlags, .clickCount = 0});
    bool handled = false;
    callView([&](MenuExtraView& view) { handled = view.scrollWheel(input); });
    event->setAccepted(handled);
}

void ViewWidget::keyPressEvent(QKeyEvent* event) {
    event->setAccepted(sendKey(*event));
}

bool ViewWidget::sendKey(const QKeyEvent& event) {
    const KeyEvent input = inputEvent(event);
    const HandledEvent scope({.modifierFlags = input.modifierFlags, .clickCount = 0});
    bool handled = false;
    callView([&](MenuExtraView& view) { handled = view.keyDown(input); });
    return handled;
}

void ViewWidget::dragEnterEvent(QDragEnterEvent* event) {
    event->accept(); // what may be dropped can depend on the position
}

/// Calls a handler for dropped data. The view copies it: the source must not delete what it moves.
void ViewWidget::sendDrop(QDropEvent& event,
                          const std::function<bool(MenuExtraView&, const DroppedData&)>& handler) {
    DroppedData dropped = inputEvent(event);
    dropped.location = location(event.position());
    bool accepted = false;
    if (event.possibleActions() & Qt::CopyAction)
        callView([&](MenuExtraView& view) { accepted = handler(view, dropped); });
    event.setDropAction(accepted ? Qt::CopyAction : Qt::IgnoreAction);
    event.setAccepted(accepted);
}

void ViewWidget::dragMoveEvent(QDragMoveEvent* event) {
    sendDrop(*event, [](const MenuExtraView& view, const DroppedData& dropped) {
        return view.acceptsDrop(dropped);
    });
}

void ViewWidget::dropEvent(QDropEvent* event) {
    sendDrop(*event, [](MenuExtraView& view, const DroppedData& dropped) {
        return view.acceptsDrop(dropped) && view.performDrop(dropped);
    });
}

bool ViewWidget::event(QEvent* event) {
    switch (event->type()) {
    case QEvent::ToolTip: {
        const auto& help = static_cast<const QHelpEvent&>(*event);
        std::string text;
        callView([&](const MenuExtraView& view) { text = view.toolTip(); });
        if (text.empty())
            break;
        showToolTip(help.globalPos(), text, *this);
        return true;
    }
    case QEvent::Hide:
        isPressed_ = false;
        [[fallthrough]];
    case QEvent::Leave:
        sendExit();
        break;
    default:
        break;
    }
    return QWidget::event(event);
}

} // namespace platform::qt
