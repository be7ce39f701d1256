#include "platform/qt/PanelWidget.h"

#include "platform/Log.h"
#include "platform/qt/Layers.h"
#include "platform/qt/Modifiers.h"
#include "platform/qt/PanelButton.h"
#include "platform/qt/PanelCloseButton.h"
#include "platform/qt/PanelControl.h"
#include "platform/qt/PanelGeometry.h"
#include "platform/qt/PanelLabel.h"
#include "platform/qt/PanelPainting.h"
#include "platform/qt/PanelStyle.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/X11Compositing.h"
#include "platform/runtime/Guard.h"

#include <QApplication>
#include <QBitmap>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QScopedValueRollback>
#include <QScreen>
#include <QScrollBar>
#include <QThread>
#include <QWindow>

#include <algorithm>
#include <map>
#include <utility>

namespace platform::qt {
namespace {

constexpr int kShadowMargin = 14;
constexpr int kKeyStep = 16;
constexpr int kAnimationSteps = 12;
constexpr unsigned long kAnimationStepMilliseconds = 15;

/// Prepares the widget of a control, and the parts of a list.
void prepareWidget(QWidget& widget, PanelStyle& style) {
    widget.setStyle(&style);
    for (auto* const bar : widget.findChildren<QScrollBar*>()) {
        bar->setStyle(&style);
        bar->setAttribute(Qt::WA_OpaquePaintEvent, false);
        bar->setCursor(Qt::ArrowCursor);
    }
    if (qobject_cast<PanelLabel*>(&widget))
        return;
    // Clicks on a disabled control do not count as clicks on the background.
    widget.setAttribute(Qt::WA_NoMousePropagation);
    if (!widget.testAttribute(Qt::WA_SetCursor))
        widget.setCursor(Qt::ArrowCursor); // not the panel's resize cursor
}

QRect primaryScreen() {
    return QGuiApplication::primaryScreen()->geometry();
}

/// The primary one first.
QList<QRect> allScreens() {
    QList<QRect> result;
    for (const QScreen* screen : QGuiApplication::screens())
        result.append(screen->geometry());
    return result;
}

} // namespace

PanelWidget::PanelWidget(Panel& panel)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::NoDropShadowWindowHint),
      panel_(&panel), owner_(currentOwner()), content_(new QWidget(this)) {
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
    content_->setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    if (hasStyle(kTitledWindowMask | kClosableWindowMask)) {
        closeButton_ = new PanelCloseButton(this);
        connect(closeButton_, &QAbstractButton::clicked, this, &QWidget::close);
    }
    translucency_ = watchTranslucency([this] { setLook(look_); });
    adoptFrame(panel.frame());
}

PanelWidget::~PanelWidget() {
    delete content_; // before the style of its widgets
}

void PanelWidget::callPanel(const std::function<void(Panel&)>& code) {
    if (!panel_)
        return;
    // The code may release the last other reference to the panel.
    const auto panel = panel_->shared_from_this();
    runGuarded(owner_, [&] { code(*panel); });
}

void PanelWidget::setLook(const PanelLook& look) {
    if (!panel_)
        return;
    look_ = look;
    const int margin = look.hasShadow && windowsAreTranslucent() ? kShadowMargin : 0;
    if (std::exchange(margin_, margin) != margin)
        adoptFrame(panel_->frame());
    content_->setPalette(panelPalette(look, hasStyle(kHUDWindowMask)));
    if (closeButton_)
        closeButton_->setPalette(content_->palette());
    setWindowOpacity(std::clamp(look.alphaValue, 0.0, 1.0));
    // Setting a flag hides the window, even if the flag does not change.
    const bool refusesKeyboard = !panel_->canBecomeKeyWindow();
    if (windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus) != refusesKeyboard)
        setWindowFlag(Qt::WindowDoesNotAcceptFocus, refusesKeyboard);
    updateMask();
    update();
}

void PanelWidget::addControl(const std::shared_ptr<Control>& control) {
    PanelControl* const shown = makePanelControl(control, owner_, content_);
    if (!shown)
        return logLine("a panel cannot show this kind of control");
    if (!style_)
        style_ = std::make_unique<PanelStyle>();
    prepareWidget(shown->widget(), *style_);
    controls_.push_back(shown);
    for (PanelControl* other : controls_) // a label may have been waiting for the control it names
        if (dynamic_cast<PanelLabel*>(other))
            other->controlDidChange();
}

void PanelWidget::removeControl(Control& control) {
    const auto found = std::ranges::find_if(
        controls_, [&](const PanelControl* shown) { return shown->shows(control); });
    if (found == controls_.end())
        return;
    PanelControl* const removed = *found;
    controls_.erase(found);
    removed->detach();
    removed->widget().hide();
    removed->widget().deleteLater(); // one of its functions may be running
}

void PanelWidget::setDefaultButton(const Button* button) {
    defaultButton_ = button;
    for (PanelControl* shown : controls_)
        if (auto* const widget = dynamic_cast<PanelButton*>(shown))
            widget->setDefault(button && widget->shows(*button));
}

void PanelWidget::detach() {
    panel_ = nullptr;
    for (PanelControl* shown : controls_)
        shown->detach();
}

void PanelWidget::makeKeyAndOrderFront() {
    setWindowState(windowState() & ~Qt::WindowMinimized);
    const bool wasVisible = isVisible();
    if (!wasVisible && panel_)
        adoptFrame(reachableFrame(panel_->frame(), allScreens()));
    show();
    raise();
    activateWindow();
    if (wasVisible || focusWidget())
        return;
    const auto first = std::ranges::find_if(
        controls_, [](const PanelControl* shown) { return shown->wantsFirstFocus(); });
    if (first == controls_.end())
        setFocus();
    else
        (*first)->takeFocus();
}

QRect PanelWidget::frameRect() const {
    return rect().adjusted(margin_, margin_, -margin_, -margin_);
}

void PanelWidget::adoptFrame(const Rect& frame) {
    const QScopedValueRollback guard(isAdopting_, true);
    setGeometry(windowGeometry(frame, margin_, primaryScreen()));
    if (closeButton_)
        closeButton_->placeAt(frameRect().topLeft());
    // The content view of a panel has its origin at the lower left corner of the frame.
    content_->setGeometry(frameRect());
    callPanel([&](Panel& panel) { panel.frameDidChange(frame); });
    for (PanelControl* control : controls_)
        control->place();
    updateMask();
}

void PanelWidget::setFrame(const Rect& frame, bool display, bool animate) {
    if (animate && isVisible())
        animateTo(frame);
    adoptFrame(frame);
    if (display)
        repaint();
}

void PanelWidget::animateTo(const Rect& frame) {
    const Rect start = panel_->frame();
    for (int step = 1; step < kAnimationSteps && panel_; ++step) {
        adoptFrame(interpolatedFrame(start, frame, static_cast<double>(step) / kAnimationSteps));
        QApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
        QThread::msleep(kAnimationStepMilliseconds);
    }
}

void PanelWidget::resizeEvent(QResizeEvent*) {
    followGeometry();
}

void PanelWidget::moveEvent(QMoveEvent*) {
    followGeometry();
}

void PanelWidget::followGeometry() {
    if (isAdopting_ || !panel_ || !isVisible())
        return;
    if (geometry() != windowGeometry(panel_->frame(), margin_, primaryScreen()))
        adoptFrame(panelFrame(geometry(), margin_, primaryScreen()));
}

void PanelWidget::hideEvent(QHideEvent* event) {
    QWidget::hideEvent(event);
    if (QWidget* const focused = focusWidget(); focused && !event->spontaneous())
        focused->clearFocus(); // the next time, the panel starts like a new one
}

void PanelWidget::closeEvent(QCloseEvent* event) {
    event->accept();
    callPanel([](Panel& panel) { panel.didClose(); });
}

void PanelWidget::showEvent(QShowEvent* event) {
    QWidget::showEvent(event);
    setInputArea(*this, frameRect()); // the window exists only now
}

void PanelWidget::updateMask() {
    setInputArea(*this, frameRect());
    const bool hasImage = dynamic_cast<const QtImage*>(look_.backgroundColor.pattern.get());
    if (look_.opaque || windowsAreTranslucent() || !hasImage) {
        clearMask();
        return;
    }
    QImage background = transparentLayer(size());
    QPainter painter(&background);
    paintPanelBackground(painter, frameRect(), look_.backgroundColor, devicePixelRatioF());
    painter.end();
    setMask(QBitmap::fromImage(background.createAlphaMask(Qt::AvoidDither | Qt::ThresholdDither)));
}

void PanelWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    paintPanelShadow(painter, frameRect(), {.width = margin_});
    paintPanelBackground(painter, frameRect(), look_.backgroundColor, devicePixelRatioF());
    const QColor text = content_->palette().windowText().color();
    if (hasStyle(kTitledWindowMask) && !hasStyle(kHUDWindowMask)) // a HUD panel draws its title
        paintPanelTitle(painter, frameRect(), static_cast<int>(kPanelTitleBarHeight), windowTitle(),
                        text);
    if (showsResizeIndicator())
        paintResizeIndicator(painter, frameRect(), text);
}

bool PanelWidget::hasStyle(std::uint32_t mask) const {
    return panel_ && (panel_->styleMask() & mask) == mask;
}

bool PanelWidget::isResizable() const {
    return hasStyle(kResizableWindowMask);
}

bool PanelWidget::showsResizeIndicator() const {
    return look_.showsResizeIndicator && isResizable();
}

Qt::Edges PanelWidget::draggableEdgesAt(QPoint position) const {
    return isResizable() ? edgesAt(position, frameRect(), showsResizeIndicator()) : Qt::Edges();
}

void PanelWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && panel_)
        drag_ = Drag{draggableEdgesAt(event->position().toPoint()),
                     event->globalPosition().toPoint(), panel_->frame()};
}

void PanelWidget::mouseMoveEvent(QMouseEvent* event) {
    if (drag_ && event->buttons() & Qt::LeftButton)
        continueDrag(event->globalPosition().toPoint());
    else
        setCursor(resizeCursor(draggableEdgesAt(event->position().toPoint())));
}

void PanelWidget::mouseDoubleClickEvent(QMouseEvent* event) {
    const double height = event->position().y() - frameRect().top();
    const bool isOnTitleBar = height >= 0 && height < kPanelTitleBarHeight;
    if (event->button() == Qt::LeftButton && isOnTitleBar &&
        hasStyle(kTitledWindowMask | kMiniaturizableWindowMask))
        showMinimized();
    else
        mousePressEvent(event);
}

void PanelWidget::continueDrag(QPoint mouse) {
    const QPoint distance = mouse - drag_->start;
    if (!drag_->hasMoved && distance.manhattanLength() < QApplication::startDragDistance())
        return;
    drag_->hasMoved = true;
    const bool canDrag = drag_->edges || look_.movableByWindowBackground;
    if (canDrag && !startSystemDrag())
        adoptFrame(draggedFrame(drag_->frame, drag_->edges, distance));
}

bool PanelWidget::startSystemDrag() {
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return false;
    const Qt::Edges edges = drag_->edges;
    drag_.reset();
    if (edges)
        windowHandle()->startSystemResize(edges);
    else
        windowHandle()->startSystemMove();
    return true;
}

void PanelWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const auto drag = std::exchange(drag_, std::nullopt);
    if (drag && !drag->hasMoved && !drag->edges)
        sendMouseUp(event->modifiers());
}

void PanelWidget::sendMouseUp(Qt::KeyboardModifiers modifiers) {
    callPanel([&](Panel& panel) { panel.mouseUp({modifierFlags(modifiers), 1, 0}); });
}

void PanelWidget::keyPressEvent(QKeyEvent* event) {
    static const std::map<int, QPoint> arrows{{Qt::Key_Left, {-1, 0}},
                                              {Qt::Key_Right, {1, 0}},
                                              {Qt::Key_Up, {0, -1}},
                                              {Qt::Key_Down, {0, 1}}};
    const bool control = event->modifiers() & Qt::ControlModifier;
    const auto arrow = arrows.find(event->key());
    const bool closes = event->key() == Qt::Key_Escape || (control && event->key() == Qt::Key_W);
    if (control && arrow != arrows.end())
        moveByKey(arrow->second, event->modifiers() & Qt::ShiftModifier);
    else if (closes && hasStyle(kClosableWindowMask))
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)
        pressReturn(event->modifiers());
    else if (event->key() == Qt::Key_Space && hasBackgroundFocus())
        sendMouseUp(event->modifiers());
    else
        QWidget::keyPressEvent(event);
}

bool PanelWidget::hasBackgroundFocus() const {
    const QWidget* const focused = focusWidget();
    return !focused || focused == this;
}

void PanelWidget::pressReturn(Qt::KeyboardModifiers modifiers) {
    const auto isDefault = [this](const PanelControl* shown) {
        return defaultButton_ && shown->shows(*defaultButton_);
    };
    const auto found = std::ranges::find_if(controls_, isDefault);
    if (found != controls_.end()) {
        // A field may have closed the panel when Return committed its text.
        if (auto* const button = dynamic_cast<PanelButton*>(*found); isVisible())
            button->click();
    } else if (hasBackgroundFocus()) {
        sendMouseUp(modifiers);
    }
}

void PanelWidget::moveByKey(QPoint direction, bool resizes) {
    if (!panel_ || (resizes && !isResizable()))
        return;
    const Qt::Edges edges = resizes ? Qt::RightEdge | Qt::BottomEdge : Qt::Edges();
    adoptFrame(draggedFrame(panel_->frame(), edges, direction * kKeyStep));
}

} // namespace platform::qt
