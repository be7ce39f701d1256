#include "platform/qt/MenuStyle.h"

#include "platform/qt/PanelPainting.h"
#include "platform/qt/QtMenu.h"

#include <QApplication>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

namespace platform::qt {
namespace {

// In points.
constexpr int kVerticalMargin = 5; // above the first row and below the last one
constexpr int kScrollerHeight = 18;
constexpr double kCornerRadius = 8;

/// Paints the shadow of a light above the menu.
void paintShadow(QPainter& painter, const QRect& panel) {
    constexpr int kOffset = 4;
    const PanelShadow shadow{panel.left() - kOffset, kCornerRadius, 0.16};
    const QRect shape = panel.translated(0, kOffset);
    paintPanelShadow(painter, shape, shadow);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor::fromRgbF(0, 0, 0, float(shadow.opacity)));
    painter.drawRoundedRect(shape, kCornerRadius, kCornerRadius);
}

/// Paints the background of a menu with a thin border, and rounded corners and a shadow if the
/// window is translucent.
void paintMenuPanel(QPainter& painter, const QtMenu& menu, const QPalette& palette) {
    const QRect panel = menu.panelRect();
    const double radius = menu.hasShadow() ? kCornerRadius : 0;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (menu.hasShadow())
        paintShadow(painter, panel);
    else
        painter.fillRect(panel, palette.base());
    const double half = 0.5 / painter.device()->devicePixelRatioF(); // a border of one pixel
    painter.setBrush(palette.base());
    painter.setPen(QPen(menuLineColor(palette), 2 * half));
    painter.drawRoundedRect(QRectF(panel).adjusted(half, half, -half, -half), radius, radius);
    painter.restore();
}

/// Paints the arrow that scrolls a menu that is higher than the screen.
void paintScroller(QPainter& painter, const QStyleOptionMenuItem& option) {
    const bool isDown = option.state & QStyle::State_DownArrow;
    const QPointF middle = QRectF(option.rect).center();
    const double tip = isDown ? 2 : -2;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(option.palette.color(QPalette::PlaceholderText), 1.6, Qt::SolidLine,
                        Qt::RoundCap, Qt::RoundJoin));
    painter.drawPolyline(
        QPolygonF{middle + QPointF(-4, -tip), middle + QPointF(0, tip), middle + QPointF(4, -tip)});
    painter.restore();
}

class MenuStyle final : public QProxyStyle {
  public:
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* data) const override {
        switch (hint) {
        case SH_Menu_Scrollable: // some styles add columns, which may extend beyond the screen
        case SH_Menu_KeyboardSearch:
            return 1;
        default:
            return QProxyStyle::styleHint(hint, option, widget, data);
        }
    }

    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override {
        const auto* const menu = qobject_cast<const QtMenu*>(widget);
        switch (metric) {
        case PM_MenuPanelWidth:
            return menu ? menu->panelMargin() : 1;
        case PM_MenuVMargin:
            return kVerticalMargin;
        case PM_MenuHMargin:
        case PM_MenuDesktopFrameWidth:
            return 0;
        case PM_MenuScrollerHeight:
            return kScrollerHeight;
        default:
            return QProxyStyle::pixelMetric(metric, option, widget);
        }
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        const auto* const menu = qobject_cast<const QtMenu*>(widget);
        if (const auto rowSize = menu && type == CT_MenuItem ? menu->styledRowSize() : std::nullopt)
            return *rowSize;
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    }

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        const auto* const menu = qobject_cast<const QtMenu*>(widget);
        if (menu && element == PE_PanelMenu)
            paintMenuPanel(*painter, *menu, option->palette);
        else if (!menu || element != PE_FrameMenu) // the panel has a border
            QProxyStyle::drawPrimitive(element, option, painter, widget);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* const menu = qobject_cast<const QtMenu*>(widget);
        const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        switch (menu && item ? element : CE_CustomBase) {
        case CE_MenuItem:
            if (menu->paintStyledRow(*painter, *item))
                return;
            break;
        case CE_MenuScroller:
            return paintScroller(*painter, *item);
        case CE_MenuEmptyArea:
        case CE_MenuHMargin:
        case CE_MenuVMargin:
            return; // the panel is already painted
        default:
            break;
        }
        QProxyStyle::drawControl(element, option, painter, widget);
    }
};

} // namespace

QStyle* menuStyle() {
    static QPointer<MenuStyle> style;
    if (!style) {
        style = new MenuStyle;
        style->setParent(qApp);
    }
    return style;
}

} // namespace platform::qt
