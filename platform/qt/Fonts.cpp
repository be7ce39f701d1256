#include "platform/qt/Fonts.h"

#include "platform/Log.h"

#include <QFontInfo>
#include <QString>
#include <QStringList>

#include <algorithm>
#include <array>
#include <cmath>

namespace platform::qt {
namespace {

constexpr double kLargestSize = 1024;

/// Names that mean "whatever there is of that kind": another name in their place is no fault.
constexpr std::array kKindsOfFamily = {"sans",      "sans-serif", "sans serif", "serif",
                                       "monospace", "mono",       "system-ui"};

/// Fontconfig's spelling of a family with its foundry, "Nimbus Sans [urw]", without the latter.
QString withoutFoundry(const QString& family) {
    return family.left(family.indexOf(QLatin1String(" [")));
}

bool sameFamily(const QString& one, const QString& other) {
    return withoutFoundry(one).compare(withoutFoundry(other), Qt::CaseInsensitive) == 0;
}

bool isKindOfFamily(const QString& family) {
    return std::any_of(kKindsOfFamily.begin(), kKindsOfFamily.end(), [&](const char* kind) {
        return family.compare(QLatin1String(kind), Qt::CaseInsensitive) == 0;
    });
}

} // namespace

QFont Fonts::font(const Font& description, const QFont& fallback, FontSmoothing smoothing) {
    QFont font = fallback;
    if (!description.family.empty())
        font.setFamilies({QString::fromStdString(description.family)});
    if (std::isfinite(description.size) && description.size > 0)
        font.setPixelSize(
            static_cast<int>(std::lround(std::clamp(description.size, 1.0, kLargestSize))));
    if (description.bold)
        font.setBold(true);
    // Full hinting rounds advances to whole pixels: the box would depend on the scale.
    if (font.hintingPreference() == QFont::PreferFullHinting ||
        font.hintingPreference() == QFont::PreferDefaultHinting)
        font.setHintingPreference(QFont::PreferVerticalHinting);
    if (smoothing == FontSmoothing::Greyscale)
        font.setStyleStrategy(
            static_cast<QFont::StyleStrategy>(font.styleStrategy() | QFont::NoSubpixelAntialias));
    if (checkedFamilies_.insert(description.family).second)
        check(font, description.family);
    return font;
}

void Fonts::check(const QFont& font, const std::string& family) {
    const QString found = QFontInfo(font).family();
    if (found.isEmpty()) {
        if (!missesAllFonts_)
            logLine("no font is installed, text is drawn as boxes");
        missesAllFonts_ = true;
        return;
    }
    const QString wanted = QString::fromStdString(family);
    if (!wanted.isEmpty() && !isKindOfFamily(wanted) && !sameFamily(wanted, found))
        logLine("font %@ is missing, drawing with %@", family, found.toStdString());
}

} // namespace platform::qt
