#include "apps/menubar/BarWindow.h"

#include "apps/menubar/BarStyle.h"
#include "apps/menubar/ItemWidget.h"
#include "apps/menubar/X11Dock.h"

#include <QAccessibleWidget>
#include <QApplication>
#include <QMouseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimer>
#include <QWindow>

#include <algorithm>
#include <iterator>

namespace apps {
namespace {

// When to check that the bar is on the screen: first, and last, in doubling intervals.
constexpr std::chrono::seconds kFirstCheck{1};
constexpr std::chrono::seconds kLastCheck{16};
constexpr int kEdgeMargin = 4; // points between the first item and the edge of the screen

/// Closes the open menu, the innermost submenu first: it would stay where its item was.
void closeMenus() {
    while (QWidget* menu = QApplication::activePopupWidget())
        if (!menu->close())
            return;
}

/// Presents the bar to screen readers as a menu bar, with the visible items from left to right.
class BarAccessible final : public QAccessibleWidget {
  public:
    explicit BarAccessible(BarWindow& bar)
        : QAccessibleWidget(&bar, QAccessible::MenuBar), bar_(bar) {}

    int childCount() const override { return static_cast<int>(bar_.visibleItems().size()); }
    QAccessibleInterface* child(int index) const override {
        const auto items = bar_.visibleItems();
        const auto position = static_cast<std::size_t>(index);
        return index < 0 || position >= items.size()
                   ? nullptr
                   : QAccessible::queryAccessibleInterface(items[position]);
    }
    int indexOfChild(const QAccessibleInterface* child) const override {
        const auto items = bar_.visibleItems();
        const auto found = std::ranges::find(items, child ? child->object() : nullptr);
        return found == items.end() ? -1 : static_cast<int>(found - items.begin());
    }

  private:
    const BarWindow& bar_;
};

QAccessibleInterface* createAccessible(const QString&, QObject* object) {
    auto* bar = qobject_cast<BarWindow*>(object);
    return bar ? new BarAccessible(*bar) : nullptr;
}

} // namespace

BarWindow::BarWindow() {
    [[maybe_unused]] static const bool installed = [] {
        QAccessible::installFactory(createAccessible);
        return true;
    }();
    setObjectName("halvex-menubar");
    setWindowTitle("Menu bar");
    setAccessibleName("Menu bar");
    setWindowFlags(Qt::Window | Qt::FramelessWindowHint | Qt::WindowDoesNotAcceptFocus);
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_AlwaysShowToolTips); // the bar is never the active window
    winId(); // creates the native window, whose dock properties must be set before it is shown
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
        return; // no screen is left; primaryScreenChanged announces the next one
    geometryConnection_ = connect(screen, &QScreen::geometryChanged, this, &BarWindow::dock);
    resolutionConnection_ =
        connect(screen, &QScreen::logicalDotsPerInchChanged, this, &BarWindow::dock);
    dock();
}

void BarWindow::showOnScreen() {
    show();
    checkIsShown(kFirstCheck);
}

void BarWindow::checkIsShown(std::chrono::milliseconds delay) {
    QTimer::singleShot(delay, this, [this, delay] {
        if (windowHandle()->isExposed() || delay > kLastCheck)
            return;
        hide();
        X11Dock::makeDock(*windowHandle());
        show();
        dock();
        checkIsShown(2 * delay);
    });
}

void BarWindow::dock() {
    QScreen* screen = QGuiApplication::primaryScreen();
    if (!screen)
        return;
    closeMenus();
    windowHandle()->setScreen(screen);
    const QRect area = screen->geometry();
    setGeometry(area.left(), area.top(), area.width(), kBarHeight);
    X11Dock::reserveTop(*windowHandle(), *screen, kBarHeight);
}

void BarWindow::placeItems(const std::vector<ItemWidget*>& items) {
    items_ = items;
    int space = width() - kEdgeMargin;
    for (ItemWidget* item : items_) {
        const int itemWidth = std::clamp(item->preferredWidth(), 0, std::max(space, 0));
        space -= itemWidth;
        item->setGeometry(isRightToLeft() ? width() - space - itemWidth : space, 0, itemWidth,
                          kBarHeight);
        item->setVisible(itemWidth > 0);
    }
}

std::vector<ItemWidget*> BarWindow::visibleItems() const {
    std::vector<ItemWidget*> visible;
    std::copy_if(items_.begin(), items_.end(), std::back_inserter(visible),
                 [](const ItemWidget* item) { return !item->isHidden(); });
    if (!isRightToLeft())
        std::ranges::reverse(visible);
    return visible;
}

void BarWindow::resizeEvent(QResizeEvent*) {
    placeItems(std::vector(items_));
}

// Not in closeEvent, which Qt also calls to end the application.
bool BarWindow::nativeEvent(const QByteArray&, void* message, qintptr*) {
    return X11Dock::isCloseRequest(message);
}

void BarWindow::mousePressEvent(QMouseEvent* event) {
    if (event->button() == Qt::RightButton)
        emit menuRequested(event->pos().x());
}

void BarWindow::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    paintBarBackground(painter, rect(), palette());
}

} // namespace apps
