#pragma once

#include "platform/PanelService.h"

#include <QColor>
#include <QPalette>
#include <QProxyStyle>

namespace platform::qt {

// The appearance of the controls in panels.

inline constexpr double kPanelControlRadius = 4; ///< of the corners, in points
inline constexpr double kSliderHandleSide = 14;  ///< points
/// Of what is disabled and has no colour for that.
inline constexpr double kPanelDisabledOpacity = 0.4;

/// Returns the palette for the controls of a panel: white on dark for HUD panels; otherwise the
/// application's, or if the background is a colour on which that is not legible, one for dark or
/// light backgrounds.
QPalette panelPalette(const PanelLook& look, bool isHUD);

/// The colours of controls, for light or dark backgrounds depending on the palette's text colour.
struct PanelColors {
    explicit PanelColors(const QPalette& palette);

    QColor field; ///< of text fields and lists
    QColor fieldRim;
    QColor plate; ///< of buttons
    QColor plateRim;
    QColor groove; ///< of sliders and scroll bars
    QColor handle; ///< of sliders
    QColor handleRim;
    QColor focusFill; ///< behind what has the focus and no ring, or is selected without the focus
    QColor accent;
    QColor accentText;
};

/// Draws a line around the inside of @p rect.
void paintFocusRing(QPainter& painter, const QRectF& rect, const QColor& color);

/// Draws the tick marks of a slider in @p rect, with @p distance points between them.
void paintSliderTicks(QPainter& painter, const QRect& rect, Qt::Orientation orientation,
                      double distance, const QPalette& palette);

/// Draws text fields, sliders, lists and scroll bars in panels. A click on a slider moves its
/// handle there. Main thread only.
class PanelStyle final : public QProxyStyle {
    Q_OBJECT

  public:
    PanelStyle();

    void drawPrimitive(PrimitiveElement element, const QStyleOption* option, QPainter* painter,
                       const QWidget* widget) const override;
    void drawControl(ControlElement element, const QStyleOption* option, QPainter* painter,
                     const QWidget* widget) const override;
    void drawComplexControl(ComplexControl control, const QStyleOptionComplex* option,
                            QPainter* painter, const QWidget* widget) const override;
    QRect subControlRect(ComplexControl control, const QStyleOptionComplex* option,
                         SubControl subControl, const QWidget* widget) const override;
    int pixelMetric(PixelMetric metric, const QStyleOption* option,
                    const QWidget* widget) const override;
    int styleHint(StyleHint hint, const QStyleOption* option, const QWidget* widget,
                  QStyleHintReturn* result) const override;
};

} // namespace platform::qt
