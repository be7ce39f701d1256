#include "platform/qt/PanelWidget.h"

#include "platform/qt/Layers.h"
#include "platform/qt/Modifiers.h"
#include "platform/qt/PanelButton.h"
#include "platform/qt/PanelCloseButton.h"
#include "platform/qt/PanelGeometry.h"
#include "platform/qt/PanelPainting.h"
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

QRect primaryScreen() {
    return QGuiApplication::primaryScreen()->geometry();
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

PanelWidget::~PanelWidget() = default;

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
    setWindowOpacity(std::clamp(look.alphaValue, 0.0, 1.0));
    // Setting a flag hides the window, even if the flag does not change.
    const bool refusesKeyboard = !panel_->canBecomeKeyWindow();
    if (windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus) != refusesKeyboard)
        setWindowFlag(Qt::WindowDoesNotAcceptFocus, refusesKeyboard);
    updateMask();
    update();
}

void PanelWidget::addButton(const std::shared_ptr<Button>& button) {
    buttons_.push_back(new PanelButton(button, owner_, content_));
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
    for (PanelButton* button : buttons_)
        button->applySettings();
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
    paintPanelShadow(painter, frameRect(), margin_);
    paintPanelBackground(painter, frameRect(), look_.backgroundColor, devicePixelRatioF());
    if (showsResizeIndicator())
        paintResizeIndicator(painter, frameRect());
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
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
             event->key() == Qt::Key_Space)
        sendMouseUp(event->modifiers());
    else
        QWidget::keyPressEvent(event);
}

void PanelWidget::moveByKey(QPoint direction, bool resizes) {
    if (!panel_ || (resizes && !isResizable()))
        return;
    const Qt::Edges edges = resizes ? Qt::RightEdge | Qt::BottomEdge : Qt::Edges();
    adoptFrame(draggedFrame(panel_->frame(), edges, direction * kKeyStep));
}

} // namespace platform::qt
