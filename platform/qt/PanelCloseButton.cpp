#include "platform/qt/PanelCloseButton.h"

#include <QPainter>

namespace platform::qt {
namespace {

// Points. The title bar is 19 points high, and the title begins 19 points from its left end.
constexpr int kInset = 3; // leaves the window's edges free for resizing
constexpr int kSide = 13;
constexpr double kRadius = 5.5;
constexpr double kCrossReach = 2.25;

// Opacities of the disc, which has the panel's text colour.
constexpr int kNormal = 150;
constexpr int kUnderMouse = 235;
constexpr int kPressed = 110;
const QColor kDarkCross(40, 40, 40);

} // namespace

PanelCloseButton::PanelCloseButton(QWidget* parent) : QAbstractButton(parent) {
    setAttribute(Qt::WA_Hover);
    setFocusPolicy(Qt::NoFocus);
    setCursor(Qt::ArrowCursor);
    setAccessibleName("Close");
}

void PanelCloseButton::placeAt(QPoint corner) {
    setGeometry({corner + QPoint(kInset, kInset), QSize(kSide, kSide)});
}

void PanelCloseButton::paintEvent(QPaintEvent*) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    QColor disc = palette().color(QPalette::Active, QPalette::WindowText);
    const QColor cross = disc.lightness() < 128 ? QColor(Qt::white) : kDarkCross;
    disc.setAlpha(isDown() ? kPressed : underMouse() ? kUnderMouse : kNormal);
    painter.setBrush(disc);
    const QPointF center = QRectF(rect()).center();
    painter.drawEllipse(center, kRadius, kRadius);
    painter.setPen(QPen(cross, 1.5, Qt::SolidLine, Qt::RoundCap));
    const QPointF down(kCrossReach, kCrossReach);
    const QPointF up(kCrossReach, -kCrossReach);
    painter.drawLine(center - down, center + down);
    painter.drawLine(center - up, center + up);
}

} // namespace platform::qt
