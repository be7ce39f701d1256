#include "platform/qt/PanelStyle.h"

#include "platform/qt/Colors.h"

#include <QApplication>
#include <QFrame>
#include <QPainter>
#include <QStyleFactory>
#include <QStyleOptionSlider>

#include <algorithm>

namespace platform::qt {
namespace {

constexpr double kPlaceholderOpacity = 0.6; // of other disabled text
constexpr double kGrooveWidth = 4;
constexpr int kFrameWidth = 3;
constexpr int kScrollBarWidth = 10;
constexpr int kSmallestScrollHandle = 24;
constexpr int kTickSpace = 6; // beside the handle of a slider with tick marks
constexpr double kTickLength = 4;

QColor gray(int level, int alpha = 255) {
    return {level, level, level, alpha};
}

QPalette palette(const QColor& window, const QColor& text) {
    QPalette result(window);
    const auto faded = [&text](int alpha) {
        return QColor(text.red(), text.green(), text.blue(), alpha);
    };
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText}) {
        result.setColor(role, text);
        result.setColor(QPalette::Disabled, role, faded(100));
    }
    result.setColor(QPalette::PlaceholderText, faded(130));
    result.setColor(QPalette::Highlight, QColor(0x34, 0x78, 0xe0));
    result.setColor(QPalette::HighlightedText, Qt::white);
    return result;
}

bool isDark(const QColor& color) {
    return color.lightness() < 128;
}

/// Returns the part of a slider or scroll bar that the handle can move in.
QRect handleRect(const QStyleOptionSlider& option, int length, const QRect& area) {
    const bool isHorizontal = option.orientation == Qt::Horizontal;
    const int space = (isHorizontal ? area.width() : area.height()) - length;
    const int start =
        QStyle::sliderPositionFromValue(option.minimum, option.maximum, option.sliderPosition,
                                        std::max(0, space), option.upsideDown);
    return isHorizontal ? QRect(area.left() + start, area.top(), length, area.height())
                        : QRect(area.left(), area.top() + start, area.width(), length);
}

/// Returns the strip in which the handle of a slider moves, beside its tick marks.
QRect sliderStrip(const QRect& rect, Qt::Orientation orientation, bool hasTicks) {
    const int side = static_cast<int>(kSliderHandleSide);
    const int width = side + (hasTicks ? kTickSpace : 0);
    return orientation == Qt::Horizontal
               ? QRect(rect.left(), rect.top() + (rect.height() - width) / 2, rect.width(), side)
               : QRect(rect.left() + (rect.width() - width) / 2, rect.top(), side, rect.height());
}

int scrollHandleLength(const QStyleOptionSlider& option) {
    const int length =
        option.orientation == Qt::Horizontal ? option.rect.width() : option.rect.height();
    const double whole = double(option.maximum) - option.minimum + option.pageStep;
    const int handle = whole > 0 ? static_cast<int>(length * option.pageStep / whole) : length;
    return std::min(length, std::max(handle, kSmallestScrollHandle));
}

void paintField(QPainter& painter, const QStyleOption& option, bool hasFocus) {
    const PanelColors colors(option.palette);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!(option.state & QStyle::State_Enabled))
        painter.setOpacity(kPanelDisabledOpacity);
    painter.setPen(colors.fieldRim);
    painter.setBrush(colors.field);
    painter.drawRoundedRect(QRectF(option.rect).adjusted(0.5, 0.5, -0.5, -0.5), kPanelControlRadius,
                            kPanelControlRadius);
    if (hasFocus)
        paintFocusRing(painter, option.rect, colors.accent);
    painter.restore();
}

void paintGroove(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle) {
    const PanelColors colors(option.palette);
    const QRectF strip =
        sliderStrip(option.rect, option.orientation, option.tickPosition != QSlider::NoTicks);
    QRectF groove = strip;
    QRectF filled;
    if (option.orientation == Qt::Horizontal) {
        groove.setTop(strip.center().y() - kGrooveWidth / 2);
        groove.setHeight(kGrooveWidth);
        filled = groove;
        if (option.upsideDown) // from right to left
            filled.setLeft(handle.center().x());
        else
            filled.setRight(handle.center().x());
    } else {
        groove.setLeft(strip.center().x() - kGrooveWidth / 2);
        groove.setWidth(kGrooveWidth);
        filled = groove;
        filled.setTop(handle.center().y());
    }
    painter.setPen(Qt::NoPen);
    painter.setBrush(colors.groove);
    painter.drawRoundedRect(groove, kGrooveWidth / 2, kGrooveWidth / 2);
    painter.setBrush(colors.accent);
    painter.drawRoundedRect(filled, kGrooveWidth / 2, kGrooveWidth / 2);
}

void paintSlider(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle) {
    const PanelColors colors(option.palette);
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!(option.state & QStyle::State_Enabled))
        painter.setOpacity(kPanelDisabledOpacity);
    paintGroove(painter, option, handle);
    const bool isPressed =
        option.state & QStyle::State_Sunken && option.activeSubControls & QStyle::SC_SliderHandle;
    painter.setPen(colors.handleRim);
    painter.setBrush(isPressed ? colors.handle.darker(115) : colors.handle);
    painter.drawEllipse(handle.adjusted(1.5, 1.5, -1.5, -1.5));
    if (option.state & QStyle::State_HasFocus) {
        painter.setPen(QPen(colors.accent, 2));
        painter.setBrush(Qt::NoBrush);
        painter.drawEllipse(handle.adjusted(1, 1, -1, -1));
    }
    painter.restore();
}

void paintScrollBar(QPainter& painter, const QStyleOptionSlider& option, const QRectF& handle) {
    if (option.maximum <= option.minimum)
        return;
    painter.save();
    painter.setRenderHint(QPainter::Antialiasing);
    if (!(option.state & QStyle::State_Enabled))
        painter.setOpacity(kPanelDisabledOpacity);
    painter.setPen(Qt::NoPen);
    painter.setBrush(PanelColors(option.palette).groove);
    const QRectF thumb = handle.adjusted(2, 2, -2, -2);
    const double radius = std::min(thumb.width(), thumb.height()) / 2;
    painter.drawRoundedRect(thumb, radius, radius);
    painter.restore();
}

/// Returns the application's palette, unless its texts are not legible on the panel.
QPalette legiblePalette(const PanelLook& look, bool isHUD) {
    QPalette dark = palette(gray(0x26), Qt::white);
    if (isHUD)
        return dark;
    QPalette application = QApplication::palette();
    const Color& ground = look.backgroundColor;
    if (ground.space == ColorSpace::Pattern || ground.alpha < 0.5)
        return application;
    const bool needsDark = isDark(qColor(ground));
    if (needsDark == isDark(application.window().color()))
        return application;
    return needsDark ? dark : palette(gray(0xec), Qt::black);
}

} // namespace

QPalette panelPalette(const PanelLook& look, bool isHUD) {
    QPalette result = legiblePalette(look, isHUD);
    // Qt derives one that is invisible on dark backgrounds.
    QColor placeholder = result.color(QPalette::Disabled, QPalette::Text);
    placeholder.setAlphaF(placeholder.alphaF() * float(kPlaceholderOpacity));
    result.setColor(QPalette::Disabled, QPalette::PlaceholderText, placeholder);
    return result;
}

PanelColors::PanelColors(const QPalette& palette)
    : accent(palette.highlight().color()), accentText(palette.highlightedText().color()) {
    if (isDark(palette.color(QPalette::Active, QPalette::WindowText))) {
        field = Qt::white;
        fieldRim = gray(0, 70);
        plate = gray(255, 220);
        plateRim = gray(0, 80);
        groove = gray(0, 60);
        handle = Qt::white;
        handleRim = gray(0, 90);
        focusFill = gray(0, 40);
    } else {
        field = gray(255, 26);
        fieldRim = gray(255, 80);
        plate = gray(255, 40);
        plateRim = gray(255, 110);
        groove = gray(255, 80);
        handle = gray(0xe8);
        handleRim = gray(0, 120);
        focusFill = gray(255, 90);
    }
}

void paintFocusRing(QPainter& painter, const QRectF& rect, const QColor& color) {
    painter.setBrush(Qt::NoBrush);
    painter.setPen(QPen(color, 2));
    painter.drawRoundedRect(rect.adjusted(1, 1, -1, -1), kPanelControlRadius - 0.5,
                            kPanelControlRadius - 0.5);
}

void paintSliderTicks(QPainter& painter, const QRect& rect, Qt::Orientation orientation,
                      double distance, const QPalette& palette) {
    painter.setPen(Qt::NoPen);
    painter.setBrush(PanelColors(palette).groove);
    const QRectF strip = sliderStrip(rect, orientation, true);
    const bool isHorizontal = orientation == Qt::Horizontal;
    const double end = isHorizontal ? strip.right() : strip.bottom();
    const double first = (isHorizontal ? strip.left() : strip.top()) + kSliderHandleSide / 2;
    // Half a point more than the last, which may be inexact.
    for (double at = first; at < end - kSliderHandleSide / 2 + 0.5; at += distance)
        painter.drawRect(isHorizontal ? QRectF(at - 0.5, strip.bottom() + 2, 1, kTickLength)
                                      : QRectF(strip.right() + 2, at - 0.5, kTickLength, 1));
}

PanelStyle::PanelStyle() : QProxyStyle(QStyleFactory::create("Fusion")) {}

void PanelStyle::drawPrimitive(PrimitiveElement element, const QStyleOption* option,
                               QPainter* painter, const QWidget* widget) const {
    switch (element) {
    case PE_PanelLineEdit:
        return paintField(*painter, *option, option->state & State_HasFocus);
    case PE_FrameFocusRect: // the controls draw their own rings
    case PE_PanelScrollAreaCorner:
        return;
    default:
        QProxyStyle::drawPrimitive(element, option, painter, widget);
    }
}

void PanelStyle::drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                             const QWidget* widget) const {
    const auto* const frame = qstyleoption_cast<const QStyleOptionFrame*>(option);
    if (element == CE_ShapedFrame && frame && frame->frameShape == QFrame::StyledPanel)
        paintField(*painter, *option, widget && widget->hasFocus());
    else
        QProxyStyle::drawControl(element, option, painter, widget);
}

void PanelStyle::drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                                    QPainter* painter, const QWidget* widget) const {
    const auto* const slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (slider && control == CC_Slider)
        paintSlider(*painter, *slider, subControlRect(control, option, SC_SliderHandle, widget));
    else if (slider && control == CC_ScrollBar)
        paintScrollBar(*painter, *slider,
                       subControlRect(control, option, SC_ScrollBarSlider, widget));
    else
        QProxyStyle::drawComplexControl(control, option, painter, widget);
}

QRect PanelStyle::subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                                 SubControl subControl, const QWidget* widget) const {
    const auto* const slider = qstyleoption_cast<const QStyleOptionSlider*>(option);
    if (slider && control == CC_Slider && subControl == SC_SliderHandle)
        return handleRect(*slider, static_cast<int>(kSliderHandleSide),
                          sliderStrip(slider->rect, slider->orientation,
                                      slider->tickPosition != QSlider::NoTicks));
    if (slider && control == CC_Slider && subControl == SC_SliderGroove)
        return slider->rect;
    if (!slider || control != CC_ScrollBar)
        return QProxyStyle::subControlRect(control, option, subControl, widget);
    const QRect handle = handleRect(*slider, scrollHandleLength(*slider), slider->rect);
    const bool isHorizontal = slider->orientation == Qt::Horizontal;
    QRect before = slider->rect;
    QRect after = slider->rect;
    isHorizontal ? before.setRight(handle.left() - 1) : before.setBottom(handle.top() - 1);
    isHorizontal ? after.setLeft(handle.right() + 1) : after.setTop(handle.bottom() + 1);
    switch (subControl) {
    case SC_ScrollBarSlider:
        return handle;
    case SC_ScrollBarGroove:
        return slider->rect;
    case SC_ScrollBarSubPage:
        return before;
    case SC_ScrollBarAddPage:
        return after;
    default:
        return {}; // no arrows
    }
}

int PanelStyle::pixelMetric(PixelMetric metric, const QStyleOption* option,
                            const QWidget* widget) const {
    switch (metric) {
    case PM_SliderLength:
    case PM_SliderControlThickness:
    case PM_SliderThickness:
        return static_cast<int>(kSliderHandleSide);
    case PM_DefaultFrameWidth:
        return kFrameWidth;
    case PM_ScrollBarExtent:
        return kScrollBarWidth;
    case PM_ScrollBarSliderMin:
        return kSmallestScrollHandle;
    default:
        return QProxyStyle::pixelMetric(metric, option, widget);
    }
}

int PanelStyle::styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                          QStyleHintReturn* result) const {
    switch (hint) {
    case SH_Slider_AbsoluteSetButtons:
        return Qt::LeftButton;
    case SH_Slider_PageSetButtons:
        return Qt::NoButton;
    case SH_ScrollBar_Transient:
        return false;
    default:
        return QProxyStyle::styleHint(hint, option, widget, result);
    }
}

} // namespace platform::qt
