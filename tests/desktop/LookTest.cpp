#include "apps/support/Appearance.h"
#include "apps/support/Texts.h"
#include "apps/support/XSettings.h"

#include <QApplication>
#include <QPalette>
#include <QToolTip>

#include <gtest/gtest.h>

#include <cmath>
#include <tuple>

namespace {

/// A block with an integer, a colour and two strings, as a settings manager writes it, which says
/// that it has @p count settings.
QByteArray block(bool bigEndian, quint32 count = 4) {
    QByteArray bytes(1, bigEndian ? '\1' : '\0');
    const auto add = [&](quint32 value, int size) {
        for (int i = 0; i < size; ++i)
            bytes += static_cast<char>(value >> 8 * (bigEndian ? size - 1 - i : i));
    };
    const auto addText = [&](const QByteArray& text) {
        bytes += text + QByteArray((4 - text.size() % 4) % 4, '\0');
    };
    const auto addName = [&](quint32 type, const QByteArray& name) {
        add(type, 1);
        add(0, 1);
        add(static_cast<quint32>(name.size()), 2);
        addText(name);
        add(7, 4);
    };
    add(0, 3);
    add(1, 4);
    add(count, 4);
    addName(0, "Xft/Hints");
    add(1, 4);
    addName(2, "Net/Color");
    add(0, 8);
    for (const auto& [name, value] : {std::pair("Net/Them", "Quiet"), {"Gtk/FontN", "Inter 11"}}) {
        addName(1, name);
        add(static_cast<quint32>(qstrlen(value)), 4);
        addText(value);
    }
    return bytes;
}

TEST(XSettings, FindsAStringBehindSettingsOfEachTypeInBothByteOrders) {
    for (const bool bigEndian : {false, true}) {
        const QByteArray bytes = block(bigEndian);
        using Row = std::tuple<const char*, std::optional<std::string>>;
        for (const auto& [name, value] : {Row{"Net/Them", "Quiet"},
                                          {"Gtk/FontN", "Inter 11"},
                                          {"Xft/Hints", std::nullopt},
                                          {"Gtk/Fon", std::nullopt}})
            EXPECT_EQ(apps::stringInXSettings(bytes, name), value) << name;
        EXPECT_EQ(apps::stringInXSettings(block(bigEndian, 3), "Gtk/FontN"), std::nullopt);
        for (qsizetype size = 0; size < bytes.size(); ++size)
            EXPECT_EQ(apps::stringInXSettings(bytes.first(size), "Gtk/FontN"), std::nullopt);
    }
}

TEST(XSettings, SeparatesTheSizeAndTheStyleFromTheFamily) {
    using Row = std::tuple<const char*, const char*, double>;
    for (const auto& [text, family, points] : {Row{"Noto Sans 10", "Noto Sans", 10},
                                               {"Noto Sans Medium Italic 10.5", "Noto Sans", 10.5},
                                               {"Cantarell,  11", "Cantarell", 11},
                                               {"Medium Rare 12", "Medium Rare", 12},
                                               {"Sans 100", "Sans", 100},
                                               {"Sans 1", "Sans", 1},
                                               {"Sans 101", "", 0},
                                               {"Sans 0.5", "", 0},
                                               {"Sans nan", "", 0},
                                               {"Sans 10px", "", 0},
                                               {"Sans", "", 0},
                                               {"Bold 10", "", 0},
                                               {" 10", "", 0},
                                               {"", "", 0}}) {
        const auto font = apps::parseFontDescription(text);
        EXPECT_EQ(font ? font->family : "", family) << text;
        EXPECT_EQ(font ? font->points : 0, points) << text;
    }
}

double luminance(const QColor& color) {
    const auto linear = [](double c) {
        return c <= 0.04045 ? c / 12.92 : std::pow((c + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QPalette& palette, QPalette::ColorRole one, QPalette::ColorRole other) {
    const double a = luminance(palette.color(one)), b = luminance(palette.color(other));
    return (std::max(a, b) + 0.05) / (std::min(a, b) + 0.05);
}

TEST(Appearance, IsLegibleInEachCombination) {
    using apps::Appearance;
    for (const auto scheme : {Appearance::Desktop, Appearance::Light, Appearance::Dark})
        for (const bool highContrast : {false, true})
            for (const auto& accent : {std::optional<QColor>(), {Qt::yellow}, {Qt::darkRed}}) {
                applyAppearance(scheme, {.accent = accent, .highContrast = highContrast});
                const QPalette palette = QApplication::palette();
                for (const auto& [text, background, least] :
                     {std::tuple(QPalette::WindowText, QPalette::Window,
                                 highContrast ? 20.0 : 10.0),
                      {QPalette::Text, QPalette::Base, highContrast ? 20.0 : 10.0},
                      {QPalette::PlaceholderText, QPalette::Base, highContrast ? 20.0 : 4.5},
                      {QPalette::HighlightedText, QPalette::Highlight, 3.0},
                      {QPalette::Window, QPalette::Highlight, accent ? 1.0 : 3.0}})
                    EXPECT_GE(contrast(palette, text, background), least)
                        << int(scheme) << highContrast << ' ' << text;
                EXPECT_GE(
                    contrast(QToolTip::palette(), QPalette::ToolTipText, QPalette::ToolTipBase), 7);
                EXPECT_EQ(palette.color(QPalette::Highlight),
                          accent.value_or(palette.color(QPalette::Highlight)));
            }
    QApplication::setPalette(QPalette());
}

TEST(Texts, AreFilledWithValues) {
    for (const auto& [text, expected] : {std::pair("%1 of %2", "a of b"),
                                         {"%2, %1, %1", "b, a, a"},
                                         {"100 % %3 %0 %", "100 % %3 %0 %"}})
        EXPECT_EQ(apps::fill(text, {"a", "b"}), expected);
}

} // namespace
