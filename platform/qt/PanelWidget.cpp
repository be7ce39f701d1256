#include "platform/qt/PanelWidget.h"

#include "platform/qt/Modifiers.h"
#include "platform/qt/PanelButton.h"
#include "platform/qt/QtImage.h"
#include "platform/qt/TextLine.h"
#include "platform/qt/X11Compositing.h"
#include "platform/runtime/Guard.h"

#include <QApplication>
#include <QBitmap>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QScopedValueRollback>
#include <QScreen>
#include <QThread>
#include <QWindow>

#include <algorithm>
#include <cmath>
#include <map>
#include <utility>

namespace platform::qt {
namespace {

constexpr int kShadowMargin = 14;
constexpr double kShadowOpacity = 0.3;
constexpr double kShadowRadius = 6;
constexpr int kEdge = 5;       // how far inside of the frame an edge can be taken hold of
constexpr int kIndicator = 15; // the side of the resize indicator
constexpr QSize kSmallestForUsers(76, 40);
constexpr int kKeyStep = 16;
constexpr int kAnimationSteps = 12;
constexpr unsigned long kAnimationStepMilliseconds = 15;

Rect between(const Rect& from, const Rect& to, double part) {
    const auto mix = [part](double a, double b) { return std::round(a + (b - a) * part); };
    return {{mix(from.origin.x, to.origin.x), mix(from.origin.y, to.origin.y)},
            {mix(from.size.width, to.size.width), mix(from.size.height, to.size.height)}};
}

/// @p frame with the edges that are taken hold of moved by @p by (y downwards), not smaller than
/// users can make it; all of it when there are none.
Rect draggedFrame(const Rect& frame, Qt::Edges edges, QPoint by) {
    Rect result = frame;
    if (!edges) {
        result.origin.x += by.x();
        result.origin.y -= by.y();
        return result;
    }
    double dx = edges & Qt::LeftEdge ? -by.x() : edges & Qt::RightEdge ? by.x() : 0;
    double dy = edges & Qt::TopEdge ? -by.y() : edges & Qt::BottomEdge ? by.y() : 0;
    dx = std::max(dx, std::min(0.0, kSmallestForUsers.width() - frame.size.width));
    dy = std::max(dy, std::min(0.0, kSmallestForUsers.height() - frame.size.height));
    result.size = {frame.size.width + dx, frame.size.height + dy};
    if (edges & Qt::LeftEdge)
        result.origin.x -= dx;
    if (edges & Qt::BottomEdge)
        result.origin.y -= dy;
    return result;
}

Qt::CursorShape cursorFor(Qt::Edges edges) {
    const bool across = edges & (Qt::LeftEdge | Qt::RightEdge);
    const bool along = edges & (Qt::TopEdge | Qt::BottomEdge);
    if (across && along)
        return edges == (Qt::LeftEdge | Qt::TopEdge) || edges == (Qt::RightEdge | Qt::BottomEdge)
                   ? Qt::SizeFDiagCursor
                   : Qt::SizeBDiagCursor;
    return across ? Qt::SizeHorCursor : along ? Qt::SizeVerCursor : Qt::ArrowCursor;
}

} // namespace

PanelWidget::PanelWidget(Panel& panel)
    : QWidget(nullptr, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint |
                           Qt::NoDropShadowWindowHint),
      panel_(&panel), owner_(currentOwner()), margin_(0), content_(new QWidget(this)) {
    setAttribute(Qt::WA_TranslucentBackground);
    setMouseTracking(true);
    content_->setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    adopt(panel.frame());
}

PanelWidget::~PanelWidget() = default;

void PanelWidget::tell(const std::function<void(Panel&)>& code) {
    if (!panel_)
        return;
    // What is told may let the panel go; it stays until the telling is over.
    const auto panel = panel_->shared_from_this();
    runGuarded(owner_, [&] { code(*panel); });
}

void PanelWidget::setLook(const PanelLook& look) {
    look_ = look;
    const int margin = look.hasShadow && windowsAreTranslucent() ? kShadowMargin : 0;
    if (std::exchange(margin_, margin) != margin)
        adopt(panel_->frame());
    setWindowOpacity(std::clamp(look.alphaValue, 0.0, 1.0));
    // Setting a flag hides the window, even when it is the same.
    const bool refusesKeyboard = !panel_->canBecomeKeyWindow();
    if (windowFlags().testFlag(Qt::WindowDoesNotAcceptFocus) != refusesKeyboard)
        setWindowFlag(Qt::WindowDoesNotAcceptFocus, refusesKeyboard);
    updateOutline();
    update();
}

// Where it is

QRect PanelWidget::geometryFor(const Rect& frame) const {
    const auto pixels = [](double length) { return static_cast<int>(std::ceil(length)); };
    const QSize size(pixels(frame.size.width), pixels(frame.size.height));
    const int bottom = QGuiApplication::primaryScreen()->geometry().height() -
                       static_cast<int>(std::lround(frame.origin.y));
    return QRect(static_cast<int>(std::lround(frame.origin.x)), bottom - size.height(),
                 std::max(1, size.width()), std::max(1, size.height()))
        .adjusted(-margin_, -margin_, margin_, margin_);
}

Rect PanelWidget::frameFor(const QRect& geometry) const {
    const QRect inner = geometry.adjusted(margin_, margin_, -margin_, -margin_);
    const int screen = QGuiApplication::primaryScreen()->geometry().height();
    return {{double(inner.x()), double(screen - inner.y() - inner.height())},
            {double(inner.width()), double(inner.height())}};
}

QRect PanelWidget::frameRect() const {
    return rect().adjusted(margin_, margin_, -margin_, -margin_);
}

void PanelWidget::adopt(const Rect& frame) {
    const QScopedValueRollback guard(adopting_, true);
    setGeometry(geometryFor(frame));
    // The content view's origin is the frame's lower left corner, which is where its lies.
    content_->setGeometry(frameRect());
    tell([&](Panel& panel) { panel.frameDidChange(frame); });
    for (PanelButton* button : buttons_)
        button->follow();
    updateOutline();
}

void PanelWidget::setFrame(const Rect& frame, bool display, bool animate) {
    if (animate && isVisible())
        adoptInSteps(frame);
    adopt(frame);
    if (display)
        repaint();
}

void PanelWidget::adoptInSteps(const Rect& frame) {
    const Rect start = panel_->frame();
    for (int step = 1; step < kAnimationSteps && panel_; ++step) {
        adopt(between(start, frame, static_cast<double>(step) / kAnimationSteps));
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

/// When it was not this program that moved the window.
void PanelWidget::followGeometry() {
    if (!adopting_ && panel_ && isVisible() && geometry() != geometryFor(panel_->frame()))
        adopt(frameFor(geometry()));
}

void PanelWidget::addButton(const std::shared_ptr<Button>& button) {
    buttons_.push_back(new PanelButton(button, owner_, content_));
}

void PanelWidget::closeEvent(QCloseEvent* event) {
    event->accept();
    tell([](Panel& panel) { panel.didClose(); });
}

// How it looks

/// Without translucent windows, what the background leaves out is cut out of the window.
void PanelWidget::updateOutline() {
    const auto* const picture = dynamic_cast<const QtImage*>(look_.backgroundColor.pattern.get());
    if (look_.opaque || windowsAreTranslucent() || !picture) {
        clearMask();
        return;
    }
    QImage drawn(size(), QImage::Format_ARGB32_Premultiplied);
    drawn.fill(Qt::transparent);
    QPainter painter(&drawn);
    paintBackground(painter);
    painter.end();
    setMask(QBitmap::fromImage(drawn.createAlphaMask(Qt::AvoidDither | Qt::ThresholdDither)));
}

void PanelWidget::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHints(QPainter::Antialiasing | QPainter::SmoothPixmapTransform);
    paintShadow(painter);
    paintBackground(painter);
    if (look_.showsResizeIndicator && isResizable())
        paintResizeIndicator(painter);
}

/// Only around the frame: under the panel it would show through.
void PanelWidget::paintShadow(QPainter& painter) const {
    if (margin_ == 0)
        return;
    painter.save();
    QPainterPath around;
    around.addRect(rect());
    around.addRoundedRect(frameRect(), kShadowRadius, kShadowRadius);
    painter.setClipPath(around);
    painter.setBrush(Qt::NoBrush);
    for (int distance = 0; distance < margin_; ++distance) {
        const double left = 1 - (distance + 0.5) / margin_;
        painter.setPen(QPen(QColor::fromRgbF(0, 0, 0, float(kShadowOpacity * left * left)), 1));
        const double by = distance + 0.5;
        painter.drawRoundedRect(QRectF(frameRect()).adjusted(-by, -by, by, by), kShadowRadius + by,
                                kShadowRadius + by);
    }
    painter.restore();
}

void PanelWidget::paintBackground(QPainter& painter) const {
    const QRect frame = frameRect();
    if (look_.backgroundColor.space != ColorSpace::Pattern) {
        painter.fillRect(frame, toQColor(look_.backgroundColor));
        return;
    }
    const auto* const picture = dynamic_cast<const QtImage*>(look_.backgroundColor.pattern.get());
    if (!picture || picture->extent().width <= 0 || picture->extent().height <= 0)
        return;
    const QImage& pixels = picture->pixelsForScale(devicePixelRatioF());
    const QSizeF tile(picture->extent().width, picture->extent().height);
    painter.save();
    painter.setClipRect(frame);
    for (double bottom = frame.bottom() + 1; bottom > frame.top(); bottom -= tile.height())
        for (double left = frame.left(); left <= frame.right(); left += tile.width())
            painter.drawImage(QRectF({left, bottom - tile.height()}, tile), pixels);
    painter.restore();
}

void PanelWidget::paintResizeIndicator(QPainter& painter) const {
    const QPointF corner(frameRect().right() - 1.5, frameRect().bottom() - 1.5);
    painter.setPen(QPen(QColor(255, 255, 255, 130), 1));
    for (const int length : {4, 8, 12})
        painter.drawLine(corner - QPointF(length, 0), corner - QPointF(0, length));
}

// What the user does

bool PanelWidget::isResizable() const {
    return panel_ && (panel_->styleMask() & kResizableWindowMask) != 0;
}

Qt::Edges PanelWidget::edgesAt(QPoint position) const {
    if (!isResizable())
        return {};
    const QRect inner = frameRect();
    if (look_.showsResizeIndicator && position.x() > inner.right() - kIndicator &&
        position.y() > inner.bottom() - kIndicator)
        return Qt::RightEdge | Qt::BottomEdge;
    Qt::Edges edges;
    edges.setFlag(Qt::LeftEdge, position.x() < inner.left() + kEdge);
    edges.setFlag(Qt::RightEdge, position.x() > inner.right() - kEdge);
    edges.setFlag(Qt::TopEdge, position.y() < inner.top() + kEdge);
    edges.setFlag(Qt::BottomEdge, position.y() > inner.bottom() - kEdge);
    return edges;
}

void PanelWidget::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::LeftButton && panel_)
        grip_ = Grip{edgesAt(event->position().toPoint()), event->globalPosition().toPoint(),
                     panel_->frame()};
}

void PanelWidget::mouseMoveEvent(QMouseEvent* event) {
    if (grip_ && event->buttons() & Qt::LeftButton)
        followGrip(event->globalPosition().toPoint());
    else
        setCursor(cursorFor(edgesAt(event->position().toPoint())));
}

void PanelWidget::followGrip(QPoint mouse) {
    const QPoint by = mouse - grip_->mouse;
    const bool draggable = grip_->edges || look_.movableByWindowBackground;
    if (!grip_->moved && by.manhattanLength() < QApplication::startDragDistance())
        return;
    grip_->moved = true;
    if (draggable && !letSystemFollow())
        adopt(draggedFrame(grip_->frame, grip_->edges, by));
}

/// Where programs do not place their windows, the system does it for them.
bool PanelWidget::letSystemFollow() {
    if (!QGuiApplication::platformName().startsWith(QLatin1String("wayland")))
        return false;
    const Qt::Edges edges = grip_->edges;
    grip_.reset();
    if (edges)
        windowHandle()->startSystemResize(edges);
    else
        windowHandle()->startSystemMove();
    return true;
}

void PanelWidget::mouseReleaseEvent(QMouseEvent* event) {
    if (event->button() != Qt::LeftButton)
        return;
    const auto grip = std::exchange(grip_, std::nullopt);
    if (grip && !grip->moved && !grip->edges)
        releaseMouse({modifierFlags(event->modifiers()), 1, 0});
}

void PanelWidget::releaseMouse(const Event& event) {
    tell([&](Panel& panel) { panel.mouseUp(event); });
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
        followKey(arrow->second, event->modifiers() & Qt::ShiftModifier);
    else if (closes && panel_ && (panel_->styleMask() & kClosableWindowMask) != 0)
        close();
    else if (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter ||
             event->key() == Qt::Key_Space)
        releaseMouse({modifierFlags(event->modifiers()), 1, 0});
    else
        QWidget::keyPressEvent(event);
}

void PanelWidget::followKey(QPoint direction, bool resizes) {
    if (!panel_ || (resizes && !isResizable()))
        return;
    const Qt::Edges edges = resizes ? Qt::RightEdge | Qt::BottomEdge : Qt::Edges();
    adopt(draggedFrame(panel_->frame(), edges, direction * kKeyStep));
}

} // namespace platform::qt
