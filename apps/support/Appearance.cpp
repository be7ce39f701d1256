#include "apps/support/Appearance.h"

#include <QApplication>
#include <QPalette>
#include <QStyle>
#include <QToolTip>

#include <cmath>
#include <utility>

namespace apps {
namespace {

struct Colors {
    QColor window; // of the bar
    QColor edge;   // below the bar
    QColor base;   // of menus
    QColor text;
    QColor secondaryText;
    QColor disabledText;
    QColor accent;
    QColor toolTip;
};

const Colors& lightColors() {
    static const Colors colors{.window = {0xf3, 0xf3, 0xf5},
                               .edge = {0xcb, 0xcb, 0xd0},
                               .base = {0xff, 0xff, 0xff},
                               .text = {0x1c, 0x1c, 0x1f},
                               .secondaryText = {0x66, 0x66, 0x6c},
                               .disabledText = {0xa2, 0xa2, 0xa8},
                               .accent = {0x2f, 0x6f, 0xd6},
                               .toolTip = {0xff, 0xff, 0xff}};
    return colors;
}

const Colors& darkColors() {
    static const Colors colors{.window = {0x26, 0x26, 0x29},
                               .edge = {0x0e, 0x0e, 0x10},
                               .base = {0x33, 0x33, 0x37},
                               .text = {0xf2, 0xf2, 0xf4},
                               .secondaryText = {0xaa, 0xaa, 0xb0},
                               .disabledText = {0x7c, 0x7c, 0x82},
                               .accent = {0x41, 0x83, 0xe6},
                               .toolTip = {0x3e, 0x3e, 0x42}};
    return colors;
}

void setText(QPalette& palette, QPalette::ColorGroup group, const QColor& color) {
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(group, role, color);
}

QPalette paletteFrom(const Colors& colors) {
    QPalette palette(colors.window);
    setText(palette, QPalette::All, colors.text);
    setText(palette, QPalette::Disabled, colors.disabledText);
    palette.setColor(QPalette::Mid, colors.edge);
    palette.setColor(QPalette::Base, colors.base);
    palette.setColor(QPalette::PlaceholderText, colors.secondaryText);
    palette.setColor(QPalette::Highlight, colors.accent);
    palette.setColor(QPalette::HighlightedText, textColorOn(colors.accent));
    palette.setColor(QPalette::ToolTipBase, colors.toolTip);
    palette.setColor(QPalette::ToolTipText, colors.text);
    return palette;
}

bool isDark(const QPalette& palette) {
    return palette.color(QPalette::Window).lightness() < 128;
}

/// Returns the palette of the platform theme, or the light one if there is only Qt's default.
QPalette desktopPalette() {
    QApplication::setPalette(QPalette());
    const QPalette palette = QApplication::palette();
    const QPalette standard = QApplication::style()->standardPalette();
    const bool isDefault =
        palette.color(QPalette::Window) == standard.color(QPalette::Window) && !isDark(palette);
    return isDefault ? paletteFrom(lightColors()) : palette;
}

void raiseContrast(QPalette& palette) {
    const bool dark = isDark(palette);
    const QColor text = dark ? Qt::white : Qt::black;
    const QColor background = dark ? Qt::black : Qt::white;
    setText(palette, QPalette::All, text);
    setText(palette, QPalette::Disabled,
            dark ? QColor(0xb4, 0xb4, 0xb4) : QColor(0x5a, 0x5a, 0x5a));
    for (const auto role : {QPalette::Mid, QPalette::PlaceholderText, QPalette::ToolTipText})
        palette.setColor(role, text);
    for (const auto role : {QPalette::Window, QPalette::Base, QPalette::ToolTipBase})
        palette.setColor(role, background);
}

/// The share of light that a colour reflects, as the sRGB standard defines it.
double luminance(const QColor& color) {
    const auto linear = [](double value) {
        return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

} // namespace

std::optional<Appearance> parseAppearance(std::string_view name) {
    if (name == "desktop")
        return Appearance::Desktop;
    if (name == "light")
        return Appearance::Light;
    if (name == "dark")
        return Appearance::Dark;
    return std::nullopt;
}

QColor textColorOn(const QColor& background) {
    constexpr double kLeastContrast = 3;
    const double contrastOfWhite = 1.05 / (luminance(background) + 0.05);
    return contrastOfWhite >= kLeastContrast ? Qt::white : Qt::black;
}

void applyAppearance(Appearance appearance, const AppearanceDetails& details) {
    QPalette palette = appearance == Appearance::Desktop ? desktopPalette()
                       : appearance == Appearance::Dark  ? paletteFrom(darkColors())
                                                         : paletteFrom(lightColors());
    if (details.accent) {
        palette.setColor(QPalette::Highlight, *details.accent);
        palette.setColor(QPalette::HighlightedText, textColorOn(*details.accent));
    }
    if (details.highContrast)
        raiseContrast(palette);
    QApplication::setPalette(palette);
    QToolTip::setPalette(palette);
}

} // namespace apps
