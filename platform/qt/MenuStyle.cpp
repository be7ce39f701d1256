#include "platform/qt/MenuStyle.h"

#include "platform/qt/QtMenu.h"

#include <QApplication>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOptionMenuItem>

namespace platform::qt {
namespace {

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
        constexpr int kVerticalMargin = 4; // above the first row and below the last one
        return metric == PM_MenuVMargin ? kVerticalMargin
                                        : QProxyStyle::pixelMetric(metric, option, widget);
    }

    QSize sizeFromContents(ContentsType type, const QStyleOption* option, const QSize& size,
                           const QWidget* widget) const override {
        const auto* const menu = qobject_cast<const QtMenu*>(widget);
        if (const auto rowSize = menu && type == CT_MenuItem ? menu->styledRowSize() : std::nullopt)
            return *rowSize;
        return QProxyStyle::sizeFromContents(type, option, size, widget);
    }

    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override {
        const auto* const menu = qobject_cast<const QtMenu*>(widget);
        const auto* const item = qstyleoption_cast<const QStyleOptionMenuItem*>(option);
        if (!menu || !item || element != CE_MenuItem || !menu->paintStyledRow(*painter, *item))
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
