#include "platform/qt/ToolTip.h"

#include "platform/qt/Strings.h"

#include <QApplication>
#include <QLabel>
#include <QPainter>
#include <QPointer>
#include <QProxyStyle>
#include <QStyleOption>
#include <QTextDocument>
#include <QToolTip>

namespace platform::qt {
namespace {

constexpr int kMargin = 6; // points around the text
constexpr double kBorderOpacity = 0.25;

/// Paints a thin border that is less prominent than the text.
class ToolTipStyle final : public QProxyStyle {
  public:
    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override {
        if (element != PE_PanelTipLabel)
            return QProxyStyle::drawPrimitive(element, option, painter, widget);
        QColor border = option->palette.color(QPalette::ToolTipText);
        border.setAlphaF(float(kBorderOpacity));
        painter->fillRect(option->rect, option->palette.toolTipBase());
        painter->setPen(border);
        painter->drawRect(option->rect.adjusted(0, 0, -1, -1));
    }
};

QStyle* toolTipStyle() {
    static QPointer<ToolTipStyle> style;
    if (!style) {
        style = new ToolTipStyle;
        style->setParent(qApp);
    }
    return style;
}

/// Styles Qt's label. It is kept for the next tooltip while it is visible.
void styleLabel() {
    for (QWidget* const window : QApplication::topLevelWidgets()) {
        auto* const label = window->inherits("QTipLabel") ? qobject_cast<QLabel*>(window) : nullptr;
        if (!label || !label->isVisible() || label->style() == toolTipStyle())
            continue;
        label->setStyle(toolTipStyle());
        label->setMargin(kMargin);
        label->resize(label->sizeHint());
    }
}

} // namespace

void showToolTip(QPoint position, std::string_view text, QWidget& widget, const QRect& area) {
    const QString plain = qString(text);
    QToolTip::showText(position,
                       Qt::mightBeRichText(plain) ? Qt::convertFromPlainText(plain) : plain,
                       &widget, area);
    if (!plain.isEmpty())
        styleLabel();
}

} // namespace platform::qt
