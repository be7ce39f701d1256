#include "apps/menubar/BarWindow.h"

#include "apps/menubar/BarLook.h"
#include "apps/menubar/ItemWidget.h"
#include "apps/menubar/X11Dock.h"

#include <QGuiApplication>
#include <QPainter>
#include <QScreen>
#include <QWindow>

#include <algorithm>

namespace apps {
namespace {

constexpr int kRightMargin = 4; // points between the first item and the screen's edge

} // namespace

BarWindow::BarWindow() {
    setObjectName("halvex-menubar");
    setWindowTitle("Menu bar");
    setAccessibleName("Menu bar");
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_ShowWithoutActivating);
    winId(); // the native window, which the dock's properties belong to
    X11Dock::makeDock(*windowHandle());
    connect(qGuiApp, &QGuiApplication::primaryScreenChanged, this, &BarWindow::followScreen);
    followScreen();
}

BarWindow::~BarWindow() = default;

void BarWindow::followScreen() {
    disconnect(geometryConnection_);
    disconnect(resolutionConnection_);
    const QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return; // the last one is gone; primaryScreenChanged tells of the next
    geometryConnection_ = connect(screen, &QScreen::geometryChanged, this, &BarWindow::dock);
    resolutionConnection_ =
        connect(screen, &QScreen::logicalDotsPerInchChanged, this, &BarWindow::dock);
    dock();
}

void BarWindow::dock() {
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    windowHandle()->setScreen(screen);
    const QRect area = screen->geometry();
    setGeometry(area.left(), area.top(), area.width(), kBarHeight);
    X11Dock::reserveTop(*windowHandle(), *screen, kBarHeight);
}

void BarWindow::placeItems(const std::vector<ItemWidget*>& fromRight) {
    fromRight_ = fromRight;
    int right = width() - kRightMargin;
    for (ItemWidget* item : fromRight_) {
        // The end of one that is too wide is cut off.
        const int given = std::clamp(item->wantedWidth(), 0, std::max(right, 0));
        right -= given;
        item->setGeometry(right, 0, given, kBarHeight);
        item->setVisible(given > 0);
    }
}

void BarWindow::resizeEvent(QResizeEvent*) {
    placeItems(std::vector(fromRight_));
}

void BarWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintBarGround(painter, rect(), palette());
}

} // namespace apps
