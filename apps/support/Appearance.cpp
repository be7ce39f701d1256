#include "apps/support/Appearance.h"

#include <QApplication>
#include <QColor>
#include <QPalette>

namespace apps {
namespace {

QPalette lightPalette() {
    QPalette palette(QColor(0xec, 0xec, 0xec));
    palette.setColor(QPalette::Highlight, QColor(0x30, 0x70, 0xd0));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    return palette;
}

QPalette darkPalette() {
    QPalette palette(QColor(0x2b, 0x2b, 0x2d));
    palette.setColor(QPalette::Mid, QColor(0x10, 0x10, 0x10));
    // The background of menus. Menu separators are a darker shade of the window colour.
    palette.setColor(QPalette::Base, QColor(0x38, 0x38, 0x3a));
    palette.setColor(QPalette::Highlight, QColor(0x5a, 0x9c, 0xf8));
    palette.setColor(QPalette::HighlightedText, Qt::black);
    // Qt would derive a colour for disabled text that is darker than the background.
    for (const auto role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(0x8a, 0x8a, 0x8d));
    return palette;
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

void applyAppearance(Appearance appearance) {
    switch (appearance) {
    case Appearance::Desktop:
        return QApplication::setPalette(QPalette());
    case Appearance::Light:
        return QApplication::setPalette(lightPalette());
    case Appearance::Dark:
        return QApplication::setPalette(darkPalette());
    }
}

} // namespace apps
