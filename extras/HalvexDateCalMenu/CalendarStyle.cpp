#include "extras/HalvexDateCalMenu/CalendarStyle.h"

#include "platform/Appearance.h"
#include "ui/Theme.h"

#include <utility>

#include <cmath>

using namespace platform;

namespace extras {
namespace {

constexpr const char* kMenuFont = ""; // the family of the menu's font

Color withAlpha(Color color, double alpha) {
    color.alpha = alpha;
    return color;
}

/// Returns a component's share of light, from 0 to 1.
double linear(double component) {
    return component <= 0.04 ? component / 12.92 : std::pow((component + 0.055) / 1.055, 2.4);
}

/// Returns the colour of text on @p background: white if it has a contrast of 3:1, else black.
Color textOn(const Color& background) {
    const double luminance = 0.2126 * linear(background.red) + 0.7152 * linear(background.green) +
                             0.0722 * linear(background.blue);
    return calibratedWhite(luminance > 0.3 ? 0 : 1);
}

Color accentColor(bool isDark) {
    const Color fallback = isDark ? Color{0.27, 0.54, 0.97} : Color{0.13, 0.42, 0.86};
    return inCalibratedRGB(appearance().accentColor().value_or(fallback)).value_or(fallback);
}

void setFonts(CalendarStyle& style) {
    style.heading = {kMenuFont, 15, true};
    style.weekday = {kMenuFont, 11, false};
    style.day = {kMenuFont, 13, false};
    style.todayDay = {kMenuFont, 13, true};
    style.weekNumber = {kMenuFont, 10, false};
    style.title = {kMenuFont, 13, true};
    style.details = {kMenuFont, 12, false};
}

void applyColors(CalendarStyle& style, const ui::Theme& theme) {
    const std::pair<const char*, Color*> colors[] = {
        {"Text", &style.text},           {"SecondaryText", &style.secondaryText},
        {"Weekend", &style.weekendText}, {"Dimmed", &style.dimmedText},
        {"Separator", &style.separator}, {"Hover", &style.hover},
        {"Today", &style.today},         {"TodayText", &style.todayText},
        {"Selection", &style.selection}, {"SelectionEdge", &style.selectionEdge},
        {"Event", &style.event},         {"Holiday", &style.holiday},
    };
    for (const auto& [name, color] : colors)
        *color = theme.color(name, *color);
}

void applyFont(CalendarStyle& style, const ui::Theme& theme) {
    for (Font* font : {&style.heading, &style.weekday, &style.day, &style.todayDay,
                       &style.weekNumber, &style.title, &style.details})
        *font = theme.font(*font);
}

} // namespace

CalendarStyle currentCalendarStyle() {
    const bool isDark = appearance().isDark();
    const bool isStrong = appearance().prefersHighContrast();
    const auto ink = [isDark](double alpha) { return calibratedWhite(isDark ? 1 : 0, alpha); };
    const Color accent = accentColor(isDark);

    CalendarStyle style;
    style.text = ink(isStrong ? 1 : 0.88);
    style.secondaryText = ink(isStrong ? 0.9 : 0.6);
    style.weekendText = ink(isStrong ? 0.9 : 0.62);
    style.dimmedText = ink(isStrong ? 0.58 : isDark ? 0.34 : 0.32);
    style.separator = ink(isStrong ? 0.6 : 0.1);
    style.hover = ink(isStrong ? 0.2 : 0.08);
    style.today = accent;
    style.todayText = textOn(accent);
    style.selection = withAlpha(accent, isDark ? 0.28 : 0.15);
    style.selectionEdge = isStrong ? style.text : accent;
    style.event = accent;
    style.holiday = isDark ? Color{1, 0.45, 0.42} : Color{0.8, 0.16, 0.16};
    setFonts(style);
    const auto theme = ui::currentTheme();
    if (!isStrong) // contrast comes before a theme
        applyColors(style, *theme);
    applyFont(style, *theme);
    return style;
}

} // namespace extras
